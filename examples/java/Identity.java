import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.nio.charset.StandardCharsets;
import java.security.GeneralSecurityException;
import java.security.KeyPair;
import java.security.KeyPairGenerator;
import java.security.SecureRandom;
import java.security.Signature;
import java.security.spec.ECGenParameterSpec;
import kestrelon.x509.tlvforge.Tlvforge;

/** A key, and the certificate in DER that says whose it is. The JDK makes keys and signatures, the library the rest. */
record Identity(KeyPair keys, byte[] certificate) {
    static final String SIGNATURE_ALGORITHM = "SHA256withECDSA";
    static final byte[] SIGNATURE_OID = Library.oid("1.2.840.10045.4.3.2");

    // In flag words bit 0 is 0x80.
    private static final int DIGITAL_SIGNATURE = 0x80, KEY_CERT_SIGN = 0x04, CRL_SIGN = 0x02;

    /** The root, which certifies itself. */
    static Identity makeAuthority() throws GeneralSecurityException {
        return issue("Учебный УЦ", 3650, null);
    }

    Identity makeSigner(String name) throws GeneralSecurityException {
        return issue(name, 365, this);
    }

    byte[] sign(byte[] toBeSigned) throws GeneralSecurityException {
        Signature signature = Signature.getInstance(SIGNATURE_ALGORITHM);
        signature.initSign(keys.getPrivate());
        signature.update(toBeSigned);
        return signature.sign();
    }

    static Library.Owned decode(byte[] certificate) {
        return Library.decode(certificate, Tlvforge::dll_DecodeCertificate, Tlvforge::dll_FreeCertificate);
    }

    // --- Issuing ---

    private static Identity issue(String subject, int days, Identity authority) throws GeneralSecurityException {
        KeyPairGenerator generator = KeyPairGenerator.getInstance("EC");
        generator.initialize(new ECGenParameterSpec("secp256r1"));
        Identity holder = new Identity(generator.generateKeyPair(), null);
        try (var owned = new Library.Owned(Tlvforge::dll_CreateCertificate, Tlvforge::dll_FreeCertificate)) {
            long certificate = owned.handle();
            Library.check(dll_SetCertificateVersion(certificate, 2)); // version 3
            byte[] serial = makeSerialNumber();
            Library.check(dll_SetCertificateSerialNumber(certificate, serial, serial.length));
            setSubject(certificate, subject);
            setValidity(certificate, days);
            setPublicKey(certificate, holder.keys.getPublic().getEncoded());
            if (authority == null) {
                certifyAuthority(certificate);
            } else {
                certifySigner(certificate, authority);
            }
            signCertificate(certificate, authority == null ? holder : authority);
            return new Identity(holder.keys, Library.bytes((b, l) -> dll_EncodeCertificate(certificate, b, l)));
        }
    }

    /** Big-endian, positive and in minimal form. */
    private static byte[] makeSerialNumber() {
        byte[] serial = new byte[16];
        new SecureRandom().nextBytes(serial);
        serial[0] = (byte) (serial[0] & 0x7F | 0x40);
        return serial;
    }

    /** Each entry becomes a relative distinguished name of its own, of the narrowest string type that holds it. */
    private static void setSubject(long certificate, String commonName) {
        String[][] entries =
                {{"2.5.4.6", "DE"}, {"2.5.4.7", "Köln"}, {"2.5.4.10", "Example"}, {"2.5.4.3", commonName}};
        long name = Library.lent(out -> dll_GetCertificateSubject(certificate, out));
        for (String[] entry : entries) {
            byte[] text = entry[1].getBytes(StandardCharsets.UTF_8);
            int type = Library.number(out -> dll_DetermineSuitableStringType(text, text.length, out));
            Library.check(dll_AddX509NameEntry(name, text, text.length, type, Library.oid(entry[0]), 1));
        }
    }

    private static void setValidity(long certificate, int days) {
        try (var time = Library.newTime()) {
            Library.check(dll_GetCurrentLibTime(time.handle()));
            Library.check(dll_SetCertificateValidNotBefore(certificate, time.handle()));
            Library.check(dll_AddDaysToLibTime(time.handle(), days));
            Library.check(dll_SetCertificateValidNotAfter(certificate, time.handle()));
        }
    }

    /** Keys of the JDK come as a SubjectPublicKeyInfo, which is taken apart into algorithm, key and parameters. */
    private static void setPublicKey(long certificate, byte[] info) {
        byte[][] parts = Library.bytes(3,
                (b, l) -> dll_DecodeSubjectPublicKeyInfo(info, info.length, b[0], l[0], b[1], l[1], b[2], l[2]));
        Library.check(dll_SetCertificatePublicKeyAlgorithmOidAndParameters(
                certificate, parts[0], parts[2], parts[2].length));
        Library.check(dll_SetCertificatePublicKey(certificate, parts[1], parts[1].length));
    }

    private static void certifyAuthority(long certificate) {
        Library.check(dll_SetCertificateIssuer(
                certificate, Library.lent(out -> dll_GetCertificateSubject(certificate, out))));
        addExtension(certificate, "2.5.29.19", (b, l) -> dll_EncodeExtensionBasicConstraints(1, 0, b, l), true);
        addExtension(certificate, "2.5.29.15",
                (b, l) -> dll_EncodeExtensionKeyUsage(KEY_CERT_SIGN | CRL_SIGN, b, l), true);
        Library.check(dll_SetCertificateSubjectKeyIdentifier(certificate));
    }

    private static void certifySigner(long certificate, Identity authority) {
        addExtension(certificate, "2.5.29.15", (b, l) -> dll_EncodeExtensionKeyUsage(DIGITAL_SIGNATURE, b, l), true);
        try (var usages = new Library.Owned(
                Tlvforge::dll_CreateExtensionExtendedKeyUsage, Tlvforge::dll_FreeExtensionExtendedKeyUsage)) {
            Library.check(dll_AddExtensionExtendedKeyUsage(usages.handle(), Library.oid("1.3.6.1.5.5.7.3.4")));
            addExtension(certificate, "2.5.29.37",
                    (b, l) -> dll_EncodeExtensionExtendedKeyUsage(usages.handle(), b, l), false);
        }
        Library.check(dll_SetCertificateSubjectKeyIdentifier(certificate));
        try (var issuer = decode(authority.certificate)) {
            Library.check(dll_SetCertificateIssuer(
                    certificate, Library.lent(out -> dll_GetCertificateSubject(issuer.handle(), out))));
            Library.check(dll_SetCertificateAuthorityKeyIdentifier(certificate, issuer.handle()));
        }
    }

    private static void addExtension(long certificate, String oid, Library.Output encode, boolean critical) {
        long extensions = Library.lent(out -> dll_GetCertificateExtensions(certificate, out));
        byte[] value = Library.bytes(encode);
        Library.check(dll_AddX509ExtensionsExtension(
                extensions, Library.oid(oid), critical ? 1 : 0, value, value.length));
    }

    /** The algorithm stands in the signed part, so it is set first. */
    private static void signCertificate(long certificate, Identity issuer) throws GeneralSecurityException {
        Library.check(dll_SetCertificateSignatureAlgorithmOidAndParameters(certificate, SIGNATURE_OID, null, 0));
        byte[] signature = issuer.sign(Library.bytes((b, l) -> dll_GetCertificateToBeSignedPart(certificate, b, l)));
        Library.check(dll_SetCertificateSignature(certificate, signature, signature.length));
    }
}
