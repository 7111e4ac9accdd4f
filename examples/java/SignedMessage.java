import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.ByteArrayInputStream;
import java.nio.charset.Charset;
import java.security.GeneralSecurityException;
import java.security.MessageDigest;
import java.security.Signature;
import java.security.cert.CertPathValidator;
import java.security.cert.CertificateFactory;
import java.security.cert.PKIXParameters;
import java.security.cert.TrustAnchor;
import java.security.cert.X509Certificate;
import java.util.Arrays;
import java.util.List;
import java.util.Set;
import kestrelon.x509.tlvforge.Tlvforge;

/** Signed messages (CMS, RFC 5652): making them from DER to DER, and one that is read. */
final class SignedMessage implements AutoCloseable {
    private static final Charset CP1251 = Charset.forName("windows-1251"); // of texts for a person

    private final byte[] der;
    private final Library.Owned signedData;

    // --- Making ---

    /**
     * The message with one more signature, and with the signer's certificate.
     *
     * @param message may be empty for a new one
     * @param attached whether the message contains the file, so that it is all that a recipient needs
     * @param attributes whether the signature covers attributes, among them digest and time, in place of the file
     */
    static byte[] addSignature(byte[] message, Identity signer, byte[] content, boolean attached, boolean attributes)
            throws GeneralSecurityException {
        byte[] digest = digest(content);
        byte[] certificate = signer.certificate();
        try (var now = Library.newTime()) {
            Library.check(dll_GetCurrentLibTime(now.handle()));
            byte[] signature = signer.sign(attributes ? attributesToBeSigned(digest, now) : content);
            return Library.bytes((buffer, length) -> dll_CreateCmsFileSignature2(
                    attached ? content : null, attached ? content.length : 0, digest, digest.length, now.handle(),
                    Library.oid("2.16.840.1.101.3.4.2.1"), null, 0, // SHA-256
                    certificate, certificate.length, certificate, new int[] {certificate.length}, 1,
                    Identity.SIGNATURE_OID, null, 0, attributes ? 1 : 0, 0, 0,
                    signature, signature.length, message, message.length, buffer, length));
        }
    }

    /** Signers are numbered from 1. The certificate of the one that goes stays in the message. */
    static byte[] removeSigner(byte[] message, int number) {
        return Library.bytes((b, l) -> dll_DeleteBufferCmsSignerInfo(number, message, message.length, b, l));
    }

    private static byte[] digest(byte[] content) throws GeneralSecurityException {
        return MessageDigest.getInstance("SHA-256").digest(content);
    }

    private static byte[] attributesToBeSigned(byte[] digest, Library.Owned time) {
        return Library.bytes(
                (b, l) -> dll_GetCmsSignedDataToBeSignedPart(digest, digest.length, time.handle(), b, l));
    }

    // --- Reading ---

    SignedMessage(byte[] der) {
        this.der = der;
        try (var info = Library.decode(der, Tlvforge::dll_DecodeCmsContentInfo, Tlvforge::dll_FreeCmsContentInfo)) {
            byte[] content = Library.bytes((b, l) -> dll_GetCmsContentInfoContent(info.handle(), b, l));
            signedData =
                    Library.decode(content, Tlvforge::dll_DecodeCmsSignedData, Tlvforge::dll_FreeCmsSignedData);
        }
    }

    @Override
    public void close() {
        signedData.close();
    }

    int signerCount() {
        return Library.number(out -> dll_GetCmsSignedDataSignerInfosCount(signedData.handle(), out));
    }

    /** Empty for a detached signature. */
    byte[] content() {
        return Library.bytes((b, l) -> dll_GetCmsSignedDataContent(signedData.handle(), b, l));
    }

    private long signer(int index) {
        return Library.lent(out -> dll_GetCmsSignedDataSignerInfo(signedData.handle(), index, out));
    }

    /** The certificate that a signer refers to, or null if it isn't in the message. */
    private byte[] certificateOf(int signer) {
        int count = Library.number(out -> dll_GetCmsSignedDataCertificatesCount(signedData.handle(), out));
        for (int i = 0; i < count; ++i) {
            int index = i;
            byte[] candidate = Library.bytes((b, l) ->
                    dll_GetCmsSignedDataEncodedCertificate(signedData.handle(), index, new int[1], b, l));
            try (var certificate = Identity.decode(candidate)) {
                int status = dll_CompareSignerInfoAndCertificate(signer(signer), certificate.handle());
                if (status == StatusOk) return candidate;
                if (status != StatusNotEqual) Library.check(status);
            }
        }
        return null;
    }

    // --- Texts ---

    /** Who signed, who certified that, and when the signature was made, by its own account. */
    String describe(int signer) {
        byte[] issuer = new byte[1024];
        int[] length = new int[1];
        try (var time = Library.newTime()) {
            int status = dll_GetBufferCmsSignatureTimeAndCN(signer + 1, der, der.length, time.handle(), issuer, length);
            // A signature without attributes states no time. The text is there all the same.
            if (status != StatusNotFound) Library.check(status);
            String when = status == StatusOk ? ", at " + Library.text(time).replace('T', ' ') + " UTC" : "";
            return "signed by " + commonName(certificateOf(signer)) + ", certified by "
                    + new String(issuer, 0, length[0], CP1251) + when;
        }
    }

    private static String commonName(byte[] der) {
        if (der == null) return "somebody whose certificate isn't here";
        try (var certificate = Identity.decode(der)) {
            return new String(Library.bytes((b, l) -> dll_GetCertificateCN(certificate.handle(), b, l)), CP1251);
        }
    }

    // --- Verification by the JDK ---

    /** All signatures with their certificates, against the content, which an attached message has to contain. */
    boolean isGood(byte[] content, boolean attached, X509Certificate root) throws GeneralSecurityException {
        boolean good = Arrays.equals(content(), attached ? content : new byte[0]);
        for (int i = 0; i < signerCount(); ++i) good = isSignatureGood(i, content, root) && good;
        return good;
    }

    static X509Certificate parse(byte[] certificate) throws GeneralSecurityException {
        return (X509Certificate) CertificateFactory.getInstance("X.509")
                .generateCertificate(new ByteArrayInputStream(certificate));
    }

    private boolean isSignatureGood(int signer, byte[] content, X509Certificate root) throws GeneralSecurityException {
        byte[] der = certificateOf(signer);
        if (der == null) return false;
        X509Certificate certificate = parse(der);
        PKIXParameters parameters = new PKIXParameters(Set.of(new TrustAnchor(root, null)));
        parameters.setRevocationEnabled(false);
        CertPathValidator.getInstance("PKIX").validate(
                CertificateFactory.getInstance("X.509").generateCertPath(List.of(certificate)), parameters);
        Signature verifier = Signature.getInstance(Identity.SIGNATURE_ALGORITHM);
        verifier.initVerify(certificate);
        verifier.update(signedBytes(signer, content));
        return verifier.verify(Library.bytes((b, l) -> dll_GetCmsSignerInfoSignature(signer(signer), b, l)));
    }

    /** What a signer of this content has to have signed: the attributes of an ordinary signature are made anew. */
    private byte[] signedBytes(int signer, byte[] content) throws GeneralSecurityException {
        long attributes = Library.lent(out -> dll_GetCmsSignerInfoSignedAttributes(signer(signer), out));
        if (Library.number(out -> dll_GetRsaAttributesAttributesCount(attributes, out)) == 0) return content;
        try (var time = Library.newTime()) {
            Library.check(dll_GetBufferCmsSignatureTime(signer + 1, der, der.length, time.handle()));
            return attributesToBeSigned(digest(content), time);
        }
    }
}
