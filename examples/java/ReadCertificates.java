import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.PrintStream;
import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.MatchResult;
import java.util.regex.Pattern;
import javax.security.auth.x500.X500Principal;
import kestrelon.x509.tlvforge.*;

/** ReadCertificates FILE: shows the certificates of a file, which is one in DER or a bundle in PEM. */
public final class ReadCertificates {
    private static final Pattern BLOCK =
            Pattern.compile("-----BEGIN CERTIFICATE-----.*?-----END [^\n]*", Pattern.DOTALL);
    private static final PrintStream OUT = new PrintStream(System.out, true, StandardCharsets.UTF_8);

    public static void main(String[] arguments) throws Exception {
        if (arguments.length != 1 || arguments[0].startsWith("-")) {
            boolean asked = arguments.length > 0 && arguments[0].matches("--help|-h");
            (asked ? System.out : System.err).println("usage: ReadCertificates FILE");
            System.exit(asked ? 0 : 2);
        }
        for (byte[] der : documentsOf(Files.readAllBytes(Path.of(arguments[0])))) {
            try (var certificate = Handle.decode(der, Tlvforge::dll_DecodeCertificate, Tlvforge::dll_FreeCertificate)) {
                show(certificate.get());
            }
        }
    }

    /** Private keys and other blocks of a bundle are passed over. */
    private static List<byte[]> documentsOf(byte[] file) {
        List<byte[]> documents = new ArrayList<>();
        String text = new String(file, StandardCharsets.ISO_8859_1);
        for (MatchResult block : BLOCK.matcher(text).results().toList()) {
            byte[] pem = block.group().getBytes(StandardCharsets.ISO_8859_1);
            documents.add(Bytes.get((data, length) -> dll_DecodePem(pem, pem.length, data, length)));
        }
        return documents.isEmpty() ? List.of(file) : documents;
    }

    private static void show(long certificate) {
        OUT.println("Certificate " + new BigInteger(Bytes.get(
                (buffer, length) -> dll_GetCertificateSerialNumber(certificate, buffer, length))).toString(16));
        OUT.println("  subject    " + nameOf(Handle.lent(out -> dll_GetCertificateSubject(certificate, out))));
        OUT.println("  issuer     " + nameOf(Handle.lent(out -> dll_GetCertificateIssuer(certificate, out))));
        OUT.println("  valid      " + Time.get(time -> dll_GetCertificateValidNotBefore(certificate, time)) + " to "
                + Time.get(time -> dll_GetCertificateValidNotAfter(certificate, time)));
        byte[][] key = Bytes.get(2, (buffers, lengths) -> dll_GetCertificatePublicKeyAlgorithmOidAndParameters(
                certificate, buffers[0], lengths[0], buffers[1], lengths[1]));
        OUT.println("  key        " + Oid.text(key[0]));
        long extensions = Handle.lent(out -> dll_GetCertificateExtensions(certificate, out));
        int count = Bytes.number(out -> dll_GetX509ExtensionsExtensionsCount(extensions, out));
        for (int i = 0; i < count; ++i) {
            int index = i;
            int[] critical = new int[1];
            byte[][] extension = Bytes.get(2, (buffers, lengths) -> dll_GetX509ExtensionsExtension(
                    extensions, index, buffers[0], lengths[0], critical, buffers[1], lengths[1]));
            OUT.println("  extension  " + Oid.text(extension[0]) + (critical[0] != 0 ? ", critical, " : ", ")
                    + extension[1].length + " bytes");
        }
    }

    /** The JDK writes a name as one line. */
    private static String nameOf(long name) {
        return new X500Principal(Bytes.get((buffer, length) -> dll_EncodeX509Name(name, buffer, length))).toString();
    }
}
