import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.PrintStream;
import java.math.BigInteger;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import javax.security.auth.x500.X500Principal;
import kestrelon.x509.tlvforge.*;

/** ListCrl FILE: lists the certificates that a CRL in DER revokes. */
public final class ListCrl {
    private static final String[] REASONS = {"unspecified", "key compromise", "CA compromise", "affiliation changed",
        "superseded", "cessation of operation", "on hold", "reason 7", "removed from CRL", "privilege withdrawn",
        "AA compromise"};
    private static final PrintStream OUT = new PrintStream(System.out, true, StandardCharsets.UTF_8);

    public static void main(String[] arguments) throws Exception {
        if (arguments.length != 1 || arguments[0].startsWith("-")) {
            boolean asked = arguments.length > 0 && arguments[0].matches("--help|-h");
            (asked ? System.out : System.err).println("usage: ListCrl FILE");
            System.exit(asked ? 0 : 2);
        }
        byte[] der = Files.readAllBytes(Path.of(arguments[0]));
        try (var owned = Handle.decode(der, Tlvforge::dll_DecodeX509Crl, Tlvforge::dll_FreeX509Crl)) {
            long crl = owned.get();
            long issuer = Handle.lent(out -> dll_GetX509CrlIssuer(crl, out));
            OUT.println("Issuer       " + new X500Principal(Bytes.get((b, l) -> dll_EncodeX509Name(issuer, b, l))));
            OUT.println("This update  " + Time.get(time -> dll_GetX509CrlThisUpdate(crl, time)));
            OUT.println("Next update  " + TlvforgeException
                    .optional(() -> Time.get(time -> dll_GetX509CrlNextUpdate(crl, time)))
                    .map(Object::toString).orElse("none"));
            int count = Bytes.number(out -> dll_GetX509CrlRevokedCertificateCount(crl, out));
            for (int i = 0; i < count; ++i) showEntry(crl, i);
            OUT.println(count + " revoked");
        }
    }

    private static void showEntry(long crl, int index) {
        BigInteger serial = new BigInteger(Bytes.get(
                (buffer, length) -> dll_GetX509CrlRevokedCertificateSerialNumber(crl, index, buffer, length)));
        OUT.println("  " + serial.toString(16) + "  "
                + Time.get(time -> dll_GetX509CrlRevokedCertificateRevokationDate(crl, index, time))
                + TlvforgeException.optional(() -> reasonOf(crl, index)).map(reason -> "  " + reason).orElse(""));
    }

    /** Throws when the entry has no extensions, or none with a reason. */
    private static String reasonOf(long crl, int index) {
        long extensions = Handle.lent(out -> dll_GetX509CrlRevokedCertificateExtensions(crl, index, out));
        byte[] value = Bytes.get((buffer, length) ->
                dll_GetX509ExtensionsExtensionValue(extensions, Oid.of("2.5.29.21"), buffer, length));
        int reason = Bytes.number(out -> dll_DecodeExtensionReasonCode(value, value.length, out));
        return reason >= 0 && reason < REASONS.length ? REASONS[reason] : "reason " + reason;
    }
}
