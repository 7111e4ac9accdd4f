/*
 * Whole signed documents, and the steps of signing around them: the bytes to sign, whether a signer is the holder of a
 * certificate, taking a signer out of a document, the signing time, and texts of one line for a person.
 *
 * A document here is a whole ContentInfo that holds SignedData (RFC 5652), as bytes or as a file of up to 300,000,000
 * bytes. Nothing is signed or verified. A signer number counts from 1, unlike the indices of cms.h: 0 is
 * StatusBadArgument.
 *
 * Functions on documents add these statuses: StatusWrongContentType another content than SignedData, StatusBadEncoding
 * a ContentInfo without content, and those of decoding. Functions on files add StatusFileOpenFailed,
 * StatusFileSeekFailed for one whose size can't be found, StatusFileReadShort and StatusFileWriteShort; a file that is
 * empty or too large is StatusBadArgument. Paths go to the C library as they are; that of
 * Windows takes them in the code page of the system.
 *
 * Texts are Russian, in code page 1251, and end in a zero. A size query and StatusBufferTooSmall count that zero, the
 * length after success does not: it is one less than what the query stored.
 */
#ifndef TLVFORGE_CMS_TOOLS_H
#define TLVFORGE_CMS_TOOLS_H

#include "tlvforge/attributes.h"
#include "tlvforge/certificate.h"
#include "tlvforge/cms.h"
#include "tlvforge/crl.h"
#include "tlvforge/status.h"
#include "tlvforge/time.h"

TLVFORGE_BEGIN

/* --- Signing --- */

/**
 * FillCmsSignerInfoWithSignedAttributes adds the signed attributes of an ordinary signature (RFC 5652, 11), one value
 * each: contentType, which is id-data whatever the document holds, messageDigest and, if signingTime isn't null,
 * signingTime. What is there already stays: a second call adds a second set. After a failure the ones added so far
 * stay. StatusAbsent for a time that isn't set.
 * @param digest of the content.
 * @param signingTime in UTC, may be null.
 */
TLVFORGE_STATUS FillCmsSignerInfoWithSignedAttributes(CmsSignerInfo* signer, const uint8_t* digest,
                                                      uint32_t digestLength, const LibraryTime* signingTime);

/**
 * FillCmsSignerInfoWithSignedAttributes2 does the same, and appends copies of further attributes. StatusAbsent also for
 * one whose cell is empty.
 * @param extra may be null.
 */
TLVFORGE_STATUS FillCmsSignerInfoWithSignedAttributes2(CmsSignerInfo* signer, const uint8_t* digest,
                                                       uint32_t digestLength, const LibraryTime* signingTime,
                                                       RsaAttributes extra);

/**
 * GetCmsSignedDataToBeSignedPart copies the bytes that a signer signs: the DER of the SET of the attributes that the
 * fill function of the same arguments makes. Every call makes them again, a size query too, so both calls need the same
 * arguments. The second form has further attributes; extra may be null.
 */
TLVFORGE_STATUS GetCmsSignedDataToBeSignedPart(const uint8_t* digest, uint32_t digestLength,
                                               const LibraryTime* signingTime, uint8_t* buffer, uint32_t* length);
TLVFORGE_STATUS GetCmsSignedDataToBeSignedPart2(const uint8_t* digest, uint32_t digestLength,
                                                const LibraryTime* signingTime, RsaAttributes extra, uint8_t* buffer,
                                                uint32_t* length);

/**
 * CompareSignerInfoAndCertificate: StatusOk when the signer's identifier names the certificate, otherwise
 * StatusNotEqual. The serial number is compared first and then the issuer by CompareX509Names, or the key identifier
 * with extension 2.5.29.14. A name of either that was never set is created empty. StatusBadValue a certificate without
 * a serial number, StatusAbsent a missing identifier or an empty name, StatusNotFound a certificate without the
 * extension, StatusWorkBufferTooSmall a serial number above 64 or a key identifier above 32 bytes.
 */
TLVFORGE_STATUS CompareSignerInfoAndCertificate(CmsSignerInfo* signer, Certificate* certificate);

/* --- Taking a signer out --- */

/**
 * DeleteBufferCmsSignerInfo makes the document without one of its signers. Taking away the only one leaves no document:
 * the result is the content itself, plain. Digest algorithms and certificates stay, those of the removed signer too.
 * StatusBadArgument no such signer, StatusNotFound the only signer of a detached signature. StatusBufferTooSmall with
 * an untouched *bufferLength means that the document would grow by being encoded as DER.
 * @param data the document.
 * @param buffer receives the new one; a size query costs as much as the call itself.
 */
TLVFORGE_STATUS DeleteBufferCmsSignerInfo(uint32_t signerNumber, const uint8_t* data, uint32_t length, uint8_t* buffer,
                                          uint32_t* bufferLength);

/**
 * DeleteCmsSignerInfo does the same from file to file. The output is written at the very end: the two paths may be the
 * same, and after any failure but StatusFileWriteShort the output is as it was.
 */
TLVFORGE_STATUS DeleteCmsSignerInfo(uint32_t signerNumber, const char* inputPath, const char* outputPath);

/* --- Signing time --- */

/**
 * GetBufferCmsSignatureTime reads the signing time that a signer states, in UTC. StatusNotFound no such signer, or none
 * that states a time; *time is as it was then. StatusBadSignerData for a signed attribute before the time that hasn't
 * exactly one value, or has one above 8192 bytes or an OID above 99. What follows the time isn't looked at.
 * @param time may be null, which only checks that there is such a signer.
 */
TLVFORGE_STATUS GetBufferCmsSignatureTime(uint32_t signerNumber, const uint8_t* data, uint32_t length,
                                          LibraryTime* time);

/**
 * GetBufferCmsSignatureTimeAndCN makes a text about the signer as well: the serial number, where it consists of text
 * characters, with ", ", then the common names of the issuer, as GetCertificateCN writes them. For a signer that is
 * identified by a key identifier the text says that the signer isn't found. StatusBufferTooSmall, with an untouched
 * *textLength, also for a key identifier above 4 bytes and for a text above 1022; StatusBadSignerData for an empty key
 * identifier.
 * @param time may be null, as there.
 * @param textLength may be null, and there is no text then. The text comes first: it stays if the time can't be read.
 */
TLVFORGE_STATUS GetBufferCmsSignatureTimeAndCN(uint32_t signerNumber, const uint8_t* data, uint32_t length,
                                               LibraryTime* time, uint8_t* text, uint32_t* textLength);

/** GetCmsSignatureTime and GetCmsSignatureTimeAndCN do the same with the document in a file. */
TLVFORGE_STATUS GetCmsSignatureTime(uint32_t signerNumber, const char* path, LibraryTime* time);
TLVFORGE_STATUS GetCmsSignatureTimeAndCN(uint32_t signerNumber, const char* path, LibraryTime* time, uint8_t* text,
                                         uint32_t* textLength);

/* --- Texts --- */

/**
 * GetCertificateCN writes the common names (2.5.4.3) of a certificate's subject, one for each RDN, joined without a
 * separator. They are preceded by the serial number and ", ", if its bytes are all in the range 32 to 122, or it has
 * none. UTF8String and BMPString are converted: a UTF-8 sequence of three or more bytes is left out, a character of a
 * BMPString that the code page hasn't becomes "?". Of any other type each byte becomes "?". A name that was never set
 * is created empty. StatusBufferTooSmall, with an untouched *length, also for a text above 1022 bytes, an empty
 * BMPString and an entry above 1024.
 */
TLVFORGE_STATUS GetCertificateCN(Certificate* certificate, uint8_t* text, uint32_t* length);

/**
 * GetCrlCN writes a CRL's version, its times in the time zone of the process, and the common names of its issuer as
 * GetCertificateCN does. StatusAbsent without a version, StatusBufferTooSmall as there, and those of reading and
 * converting the times.
 */
TLVFORGE_STATUS GetCrlCN(X509Crl* crl, uint8_t* text, uint32_t* length);

/**
 * GetZelcryptIdentifierFromCertificate copies the key identifier text of the private extension 1.2.643.3.123.3.1. The
 * size query stores the length of the UTF-8 text that the extension holds, without a zero: offer one byte more. With a
 * smaller buffer bytes may have been written before StatusBufferTooSmall. StatusNotFound without the extension.
 */
TLVFORGE_STATUS GetZelcryptIdentifierFromCertificate(const Certificate* certificate, uint8_t* text, uint32_t* length);

/**
 * GetVersionInfo writes one line about this library, below 100 bytes. There is no size query: a null text is
 * StatusBadArgument.
 */
TLVFORGE_STATUS GetVersionInfo(uint8_t* text, uint32_t* length);

TLVFORGE_END

#endif
