// The files that a responder lives on.
#pragma once

#include <filesystem>

#include "identity_files.h"
#include "responder.h"

namespace examples {

inline void WriteResponder(const Responder& responder, const std::filesystem::path& directory) {
    WriteIdentity(responder.identity, directory, "responder");
    WriteDocument(directory / "root.cer", EncodeCertificate, responder.authority);
    WriteDocument(directory / "issued.der", EncodeCertificates, responder.issued);
    WriteDocument(directory / "crl.crl", EncodeX509Crl, responder.crl);
}

inline Responder ReadResponder(const std::filesystem::path& directory) {
    return {ReadIdentity(directory, "responder"),
            ReadDocument<OwnedCertificate>(directory / "root.cer", DecodeCertificate),
            ReadDocument<OwnedCertificates>(directory / "issued.der", DecodeCertificates),
            ReadDocument<OwnedCrl>(directory / "crl.crl", DecodeX509Crl)};
}

}  // namespace examples
