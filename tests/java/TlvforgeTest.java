import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.ByteArrayInputStream;
import java.lang.reflect.*;
import java.math.BigInteger;
import java.nio.charset.*;
import java.nio.file.*;
import java.security.*;
import java.security.cert.CertificateFactory;
import java.security.cert.X509Certificate;
import java.time.Instant;
import java.util.*;
import java.util.concurrent.atomic.AtomicInteger;
import javax.security.auth.x500.X500Principal;
import kestrelon.x509.tlvforge.*;

/** The bridge in a running virtual machine, whose own certificates and signatures judge what it builds. */
public final class TlvforgeTest {
    interface Case {
        void run() throws Exception;
    }

    /** Arguments: "suite" and a directory for what is built; "loaded" and a part of the library's path; "version". */
    public static void main(String[] arguments) throws Exception {
        switch (arguments[0]) {
            case "version" -> versionText();
            case "loaded" -> loadedFrom(arguments[1]);
            default -> {
                everyNativeResolves();
                objects();
                values();
                Path directory = Files.createDirectories(Path.of(arguments[1]));
                byte[] certificate = certificate();
                Files.write(directory.resolve("certificate.der"), certificate);
                signedDocument(certificate, Files.createTempDirectory(directory, "signed"));
            }
        }
        System.out.println(arguments[0] + ": passed");
    }

    // --- Help ---

    private static void equal(Object expected, Object actual, String what) {
        if (!expected.equals(actual)) throw new AssertionError(what + ": " + actual + " instead of " + expected);
    }

    private static void ok(int status) {
        equal(0, status, "status");
    }

    private static <T extends RuntimeException> T thrown(Class<T> type, Case failing) throws Exception {
        try {
            failing.run();
        } catch (RuntimeException failure) {
            return type.cast(failure);
        }
        throw new AssertionError("nothing was thrown");
    }

    private static int statusOf(Case failing) throws Exception {
        return thrown(TlvforgeException.class, failing).status();
    }

    // --- Cases ---

    private static void loadedFrom(String part) throws Exception {
        ok(dll_GetVersionInfo(null));
        equal(true, Files.readAllLines(Path.of("/proc/self/maps")).stream()
                .anyMatch(line -> line.contains("tlvforge_64") && line.contains(part)), "library loaded from " + part);
    }

    /** Null handles, and arrays and numbers of all sizes: each method is there, gives a status, and does no harm. */
    private static void everyNativeResolves() throws Exception {
        Set<Integer> statuses = new TreeSet<>();
        int count = 0;
        for (Method method : Tlvforge.class.getDeclaredMethods()) {
            if (!Modifier.isNative(method.getModifiers())) continue;
            ++count;
            for (int size : new int[] {-1, 0, 1, 8, 64}) {
                for (int number : new int[] {0, 1, 8, size, -1, Integer.MAX_VALUE}) {
                    Object[] arguments = Arrays.stream(method.getParameterTypes())
                            .map(type -> argument(type, size, number)).toArray();
                    Object result = method.invoke(null, arguments);
                    if (result instanceof Integer) statuses.add((Integer) result);
                }
            }
        }
        equal(true, count >= 783, count + " natives");
        equal(true, statuses.containsAll(Set.of(StatusOk, StatusBadArgument, StatusBufferTooSmall)), "" + statuses);
    }

    private static Object argument(Class<?> type, int size, int number) {
        if (type == long.class) return 0L;
        if (type == int.class) return number;
        if (size < 0) return null;
        if (type == byte[].class) return new byte[size];
        if (type == int[].class) return new int[size];
        if (type == long[].class) return new long[size];
        return type == String.class ? "/nowhere/" + "x".repeat(size) : null;
    }

    /** Once by close, never after release, and by the collector when the handle is forgotten. */
    private static void objects() throws Exception {
        AtomicInteger freed = new AtomicInteger();
        Handle.Free free = object -> {
            freed.incrementAndGet();
            return dll_FreeCertificate(object);
        };
        Handle closed = Handle.create(Tlvforge::dll_CreateCertificate, free);
        closed.close();
        closed.close();
        equal(1, freed.get(), "freed by close");
        thrown(IllegalStateException.class, closed::get);
        try (Handle list = Handle.create(Tlvforge::dll_CreateCertificates, Tlvforge::dll_FreeCertificates);
                Handle adopted = Handle.create(Tlvforge::dll_CreateCertificate, free)) {
            ok(dll_AddCertificateToCertificates(list.get(), adopted.get()));
            adopted.release();
            equal(1, Bytes.number(out -> dll_GetCertificatesCount(list.get(), out)), "members");
        }
        equal(1, freed.get(), "freed after release");
        byte[] empty = {0x30, 0};
        equal(StatusBadEncoding, statusOf(() -> Handle.decode(empty, Tlvforge::dll_DecodeCertificate, free)), "bytes");

        Handle.create(Tlvforge::dll_CreateCertificate, free);
        for (int i = 0; i < 200 && freed.get() == 1; ++i) {
            System.gc();
            Thread.sleep(50);
        }
        equal(2, freed.get(), "freed by the collector");
    }

    private static void values() throws Exception {
        equal("1.2.643.2.2.31.1", Oid.text(Oid.of("1.2.643.2.2.31.1")), "identifier");
        equal(StatusBadArgument, statusOf(() -> Oid.of("x")), "no identifier");
        String absent = "StatusAbsent: a field that is needed is absent";
        equal(absent, new TlvforgeException(StatusAbsent).getMessage(), "text of a status");
        equal("status 9", Tlvforge.statusText(9), "an unknown status");
        try (Handle crl = Handle.create(Tlvforge::dll_CreateX509Crl, Tlvforge::dll_FreeX509Crl)) {
            equal(true, TlvforgeException.optional(() -> Time.get(time -> dll_GetX509CrlNextUpdate(crl.get(), time)))
                    .isEmpty(), "no time");
            for (String text : new String[] {"1950-01-01T00:00:00Z", "1969-12-31T23:59:59Z", "2100-12-31T12:30:45Z"}) {
                Time.set(Instant.parse(text), time -> dll_SetX509CrlNextUpdate(crl.get(), time));
                equal(text, Time.get(time -> dll_GetX509CrlNextUpdate(crl.get(), time)).toString(), "time");
            }
            equal(StatusBadTime, statusOf(() -> Time.set(Instant.parse("2101-01-01T00:00:00Z"), time -> 0)), "2101");
            equal(StatusBadArgument, statusOf(() -> TlvforgeException.optional(
                    () -> Bytes.get((buffer, length) -> dll_EncodeX509Crl(0, buffer, length)))), "another failure");
        }
        Instant precise = Time.getPrecise(time -> dll_SetLibraryPreciseTime(time, 1, 2, 2024, 3, 4, 5, 6, 7));
        equal("2024-02-01T03:04:05.006007Z", precise.toString(), "fraction");
        equal(true, Time.get(time -> 0) == null, "the null time");
        equal("Ё", Bytes.text("Ё\0".getBytes(StandardCharsets.UTF_8)), "text");
    }

    private static void versionText() {
        StringBuffer text = new StringBuffer("before");
        ok(dll_GetVersionInfo(text));
        equal(true, text.toString().startsWith("TLVFORGE v1.0 (64bit)"), text.toString());
    }

    /** A certificate, built and signed, as the virtual machine reads it. */
    private static byte[] certificate() throws Exception {
        KeyPair keys = KeyPairGenerator.getInstance("EC").generateKeyPair();
        byte[] spki = keys.getPublic().getEncoded();
        byte[][] parts = Bytes.get(3,
                (b, l) -> dll_DecodeSubjectPublicKeyInfo(spki, spki.length, b[0], l[0], b[1], l[1], b[2], l[2]));

        long certificate = Handle.lent(Tlvforge::dll_CreateCertificate);
        ok(dll_SetCertificateVersion(certificate, 2));
        ok(dll_SetCertificateSerialNumber(certificate, new byte[] {0x41, 0x42}, 2));
        X500Principal name = new X500Principal("CN=Подписант Ё, O=Кузница, C=RU");
        try (Handle read = Handle.decode(name.getEncoded(), Tlvforge::dll_DecodeX509Name, Tlvforge::dll_FreeX509Name)) {
            ok(dll_SetCertificateIssuer(certificate, read.get()));
            ok(dll_SetCertificateSubject(certificate, read.get()));
        }
        Instant to = Instant.parse("2054-04-03T12:30:45Z");
        Time.set(Instant.parse("2024-02-01T12:30:45Z"), time -> dll_SetCertificateValidNotBefore(certificate, time));
        Time.set(to, time -> dll_SetCertificateValidNotAfter(certificate, time));
        ok(dll_SetCertificatePublicKeyAlgorithmOidAndParameters(certificate, parts[0], parts[2], parts[2].length));
        ok(dll_SetCertificatePublicKey(certificate, parts[1], parts[1].length));
        byte[] constraints = Bytes.get((buffer, length) -> dll_EncodeExtensionBasicConstraints(1, 3, buffer, length));
        long extensions = Handle.lent(handle -> dll_GetCertificateExtensions(certificate, handle));
        ok(dll_AddX509ExtensionsExtension(extensions, Oid.of("2.5.29.19"), 1, constraints, constraints.length));
        ok(dll_AddX509ExtensionsExtension(extensions, Oid.of("1.2.643.3.123.3.1"), 0, new byte[] {12, 2, 'A', 'B'}, 4));
        equal("AB", Bytes.text((b, l) -> dll_GetZelcryptIdentifierFromCertificate(certificate, b, l)), "without zero");
        ok(dll_SetCertificateSignatureAlgorithmOidAndParameters(certificate, Oid.of("1.2.840.10045.4.3.2"), null, 0));
        Signature signer = Signature.getInstance("SHA256withECDSA");
        signer.initSign(keys.getPrivate());
        signer.update(Bytes.get((buffer, length) -> dll_GetCertificateToBeSignedPart(certificate, buffer, length)));
        byte[] signature = signer.sign();
        ok(dll_SetCertificateSignature(certificate, signature, signature.length));
        byte[] der = Bytes.get((buffer, length) -> dll_EncodeCertificate(certificate, buffer, length));
        ok(dll_FreeCertificate(certificate));

        X509Certificate parsed = (X509Certificate) CertificateFactory.getInstance("X.509")
                .generateCertificate(new ByteArrayInputStream(der));
        parsed.verify(keys.getPublic());
        equal(name, parsed.getSubjectX500Principal(), "subject");
        equal(BigInteger.valueOf(0x4142), parsed.getSerialNumber(), "serial number");
        equal(Date.from(to), parsed.getNotAfter(), "notAfter");
        equal(3, parsed.getBasicConstraints(), "path length");
        return der;
    }

    private static byte[] signed(byte[] certificate, byte[] content, byte[] existing, int year) {
        byte[] digest = new byte[32], signature = new byte[64];  // nobody verifies them
        try (Handle time = Handle.create(Tlvforge::dll_CreateLibraryTime, Tlvforge::dll_FreeLibraryTime)) {
            ok(dll_SetLibraryTime(time.get(), 5, 6, year, 12, 30, 45));
            return Bytes.get((buffer, length) -> dll_CreateCmsFileSignature2(content, content.length, digest, 32,
                    time.get(), Oid.of("2.16.840.1.101.3.4.2.1"), null, 0, certificate, certificate.length, certificate,
                    new int[1], 1, Oid.of("1.2.840.10045.4.3.2"), null, 0, 1, 0, 0, signature, 64,
                    existing, existing == null ? 0 : existing.length, buffer, length));
        }
    }

    /** Two signers; the file routines take one away and read the time of the other, under a name in CP1251. */
    private static void signedDocument(byte[] certificate, Path directory) throws Exception {
        byte[] content = "Документ".getBytes(StandardCharsets.UTF_8);
        byte[] document = signed(certificate, content, signed(certificate, content, null, 2024), 2025);
        Instant left = Time.get(time -> dll_GetBufferCmsSignatureTime(2, document, document.length, time));
        equal(StatusBufferTooSmall, dll_CreateCmsFileSignature2(content, 1, content, 1, 0, Oid.of("1.2"), null, 0,
                document, 1, certificate, new int[1], 2, Oid.of("1.2"), null, 0, 1, 0, 0, content, 1, null, 0, null,
                new int[1]), "two certificates in one array");

        Path plain = Files.write(directory.resolve("signed.p7s"), document);
        String name = "Подпись № 1 ёЁ.p7s", path = directory + "/" + name;
        ok(dll_DeleteCmsSignerInfo(1, plain.toString(), path));
        equal(left, Time.get(time -> dll_GetCmsSignatureTime(1, path, time)), "time of the signer that is left");
        equal(StatusNotFound, dll_GetCmsSignatureTime(2, path, 0), "the one that isn't");
        byte[][] signer = new byte[1][];
        equal(left, Time.get(time -> {
            signer[0] = Bytes.get((text, length) -> dll_GetCmsSignatureTimeAndCN(1, path, time, text, length));
            return 0;
        }), "his time");
        Charset cp1251 = Charset.forName("windows-1251");
        equal("AB, Подписант Ё", new String(signer[0], cp1251), "signer");

        Process list = new ProcessBuilder("ls", directory.toString()).start();
        equal(true, new String(list.getInputStream().readAllBytes(), cp1251).contains(name), "the name of the file");
        equal(StatusFileOpenFailed, dll_GetCmsSignatureTime(1, directory + "/нет", 0), "no such file");
    }
}
