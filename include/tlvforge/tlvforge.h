/* The whole interface of tlvforge. */
#ifndef TLVFORGE_TLVFORGE_H
#define TLVFORGE_TLVFORGE_H

#include "tlvforge/algorithms.h"
#include "tlvforge/asn1.h"
#include "tlvforge/attribute_values.h"
#include "tlvforge/attributes.h"
#include "tlvforge/certificate.h"
#include "tlvforge/cms.h"
#include "tlvforge/cms_tools.h"
#include "tlvforge/convert.h"
#include "tlvforge/crl.h"
#include "tlvforge/enveloped.h"
#include "tlvforge/extensions.h"
#include "tlvforge/names.h"
#include "tlvforge/ocsp.h"
#include "tlvforge/oid.h"
#include "tlvforge/pem.h"
#include "tlvforge/private_extensions.h"
#include "tlvforge/request.h"
#include "tlvforge/sha1.h"
#include "tlvforge/status.h"
#include "tlvforge/status_text.h"
#include "tlvforge/time.h"
#include "tlvforge/timestamp.h"

#endif
