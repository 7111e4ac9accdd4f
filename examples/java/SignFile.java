import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.nio.file.Files;
import java.nio.file.Path;
import java.security.KeyFactory;
import java.security.MessageDigest;
import java.security.PrivateKey;
import java.security.Signature;
import java.security.spec.PKCS8EncodedKeySpec;
import java.time.Instant;
import kestrelon.x509.tlvforge.*;

/**
 * SignFile FILE CERTIFICATE KEY OUTPUT: signs a file with RSA and SHA-256, and removes the signature again.
 *
 * <p>The certificate and its private key (PKCS #8) are in PEM. OUTPUT gets a signed message (CMS) with the file in it,
 * OUTPUT.p7s the signature alone. The JDK makes digest and signature, the library the message.
 */
public final class SignFile {
    private static final byte[] SHA256 = Oid.of("2.16.840.1.101.3.4.2.1"), RSA = Oid.of("1.2.840.113549.1.1.1");

    public static void main(String[] arguments) throws Exception {
        if (arguments.length != 4 || arguments[0].startsWith("-")) {
            boolean asked = arguments.length > 0 && arguments[0].matches("--help|-h");
            (asked ? System.out : System.err).println("usage: SignFile FILE CERTIFICATE KEY OUTPUT");
            System.exit(asked ? 0 : 2);
        }
        byte[] content = Files.readAllBytes(Path.of(arguments[0]));
        byte[] certificate = readPem(arguments[1]);
        PrivateKey key = KeyFactory.getInstance("RSA").generatePrivate(new PKCS8EncodedKeySpec(readPem(arguments[2])));
        byte[] attached = sign(content, true, certificate, key);
        Files.write(Path.of(arguments[3]), attached);
        Files.write(Path.of(arguments[3] + ".p7s"), sign(content, false, certificate, key));

        Instant time = Time.get(out -> dll_GetBufferCmsSignatureTime(1, attached, attached.length, out));
        byte[] inside = Bytes.get((buffer, length) ->
                dll_DeleteBufferCmsSignerInfo(1, attached, attached.length, buffer, length));
        System.out.println("signed at " + time + ", " + inside.length + " bytes inside");
    }

    private static byte[] readPem(String path) throws Exception {
        byte[] pem = Files.readAllBytes(Path.of(path));
        return Bytes.get((buffer, length) -> dll_DecodePem(pem, pem.length, buffer, length));
    }

    /** The signature covers attributes, among them the digest of the content; so the content may be kept apart. */
    private static byte[] sign(byte[] content, boolean attach, byte[] certificate, PrivateKey key) throws Exception {
        byte[] digest = MessageDigest.getInstance("SHA-256").digest(content);
        byte[] signed = attach ? content : null;
        try (var time = Handle.create(Tlvforge::dll_CreateLibraryTime, Tlvforge::dll_FreeLibraryTime)) {
            TlvforgeException.check(dll_GetCurrentLibTime(time.get()));
            Signature signer = Signature.getInstance("SHA256withRSA");
            signer.initSign(key);
            signer.update(Bytes.get((buffer, length) ->
                    dll_GetCmsSignedDataToBeSignedPart(digest, digest.length, time.get(), buffer, length)));
            byte[] signature = signer.sign();
            return Bytes.get((buffer, length) -> dll_CreateCmsFileSignature2(signed, attach ? content.length : 0,
                    digest, digest.length, time.get(), SHA256, null, 0, certificate, certificate.length,
                    certificate, new int[] {certificate.length}, 1, RSA, null, 0, 1, 0, 0,
                    signature, signature.length, null, 0, buffer, length));
        }
    }
}
