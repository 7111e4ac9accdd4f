import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.ByteArrayInputStream;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.math.BigInteger;
import java.nio.charset.Charset;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.security.KeyPair;
import java.security.KeyPairGenerator;
import java.security.MessageDigest;
import java.security.Signature;
import java.security.cert.CertificateFactory;
import java.security.cert.X509Certificate;
import java.time.Instant;
import java.util.Arrays;
import java.util.Date;
import java.util.LinkedHashMap;
import java.util.Map;
import java.util.Set;
import java.util.TreeSet;
import java.util.concurrent.atomic.AtomicInteger;
import javax.security.auth.x500.X500Principal;
import kestrelon.x509.tlvforge.*;

/** The bridge in a running virtual machine, whose own certificates and signatures judge what it builds. */
public final class TlvforgeTest {
    interface Case {
        void run() throws Exception;
    }

    private static Path directory;

    /** Arguments: "suite", with a directory for what is built; "loaded", with a part of the library's path; "version". */
    public static void main(String[] arguments) throws Exception {
        if (arguments[0].equals("version")) {
            versionText();
            System.out.println("version text: passed");
            return;
        }
        if (arguments[0].equals("loaded")) {
            loadedFrom(arguments[1]);
            return;
        }
        directory = Files.createDirectories(Path.of(arguments[1]));
        Map<String, Case> cases = new LinkedHashMap<>();
        cases.put("every native resolves and stands any arrays", TlvforgeTest::everyNativeResolves);
        cases.put("outputs", TlvforgeTest::outputs);
        cases.put("inputs", TlvforgeTest::inputs);
        cases.put("handles and numbers", TlvforgeTest::handlesAndNumbers);
        cases.put("objects that are freed", TlvforgeTest::objects);
        cases.put("statuses as exceptions, identifiers and times", TlvforgeTest::values);
        cases.put("a certificate, built and signed", TlvforgeTest::certificate);
        cases.put("a signed document, and files with Cyrillic names", TlvforgeTest::signedDocument);
        cases.put("memory stays", TlvforgeTest::memoryStays);
        int failures = 0;
        for (Map.Entry<String, Case> entry : cases.entrySet()) {
            try {
                entry.getValue().run();
                System.out.println("ok      " + entry.getKey());
            } catch (Exception | AssertionError failure) {
                ++failures;
                System.out.println("FAILED  " + entry.getKey());
                failure.printStackTrace(System.out);
            }
        }
        System.exit(failures);
    }

    // --- Help ---

    private static void equal(Object expected, Object actual, String what) {
        if (!expected.equals(actual)) throw new AssertionError(what + ": " + actual + " instead of " + expected);
    }

    private static void ok(int status) {
        equal(0, status, "status");
    }

    private static byte[] utf8(String text) {
        return text.getBytes(StandardCharsets.UTF_8);
    }

    private static long time(int day, int month, int year) {
        long time = Handle.lent(Tlvforge::dll_CreateLibraryTime);
        ok(dll_SetLibraryTime(time, day, month, year, 12, 30, 45));
        return time;
    }

    // --- Cases ---

    private static void loadedFrom(String part) throws Exception {
        equal(0, dll_GetVersionInfo(null), "status");
        boolean found = Files.readAllLines(Path.of("/proc/self/maps")).stream()
                .anyMatch(line -> line.contains("tlvforge_64") && line.contains(part));
        equal(true, found, "library loaded from " + part);
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
                    Object[] arguments = new Object[method.getParameterCount()];
                    for (int i = 0; i < arguments.length; ++i) {
                        arguments[i] = argument(method.getParameterTypes()[i], size, number);
                    }
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

    private static void outputs() {
        long crl = Handle.lent(Tlvforge::dll_CreateX509Crl);
        byte[] signature = new byte[64];
        Arrays.fill(signature, (byte) 7);
        ok(dll_SetX509CrlSignature(crl, signature, 64));
        for (int size : new int[] {-1, 0, 10, 63, 64, 100}) {
            byte[] buffer = size < 0 ? null : new byte[size];
            int[] length = {size == 10 ? 1000 : 0, -5};
            boolean small = size >= 0 && size < 64;
            equal(small ? 49 : 0, dll_GetX509CrlSignature(crl, buffer, length), "status with " + size);
            equal(64, length[0], "length with " + size);
            equal(-5, length[1], "element after it");
            byte[] expected = small || buffer == null ? new byte[Math.max(size, 0)] : Arrays.copyOf(signature, size);
            if (buffer != null) equal(true, Arrays.equals(expected, buffer), "bytes with " + size);
        }
        equal(49, dll_GetX509CrlSignature(crl, null, null), "null length");
        equal(49, dll_GetX509CrlSignature(crl, new byte[64], new int[0]), "empty length");
        ok(dll_FreeX509Crl(crl));
    }

    private static void inputs() {
        long certificate = Handle.lent(Tlvforge::dll_CreateCertificate);
        byte[] bytes = {1, 2, 3, 4};
        for (int count : new int[] {4, 2, -1, 1}) {
            ok(dll_SetCertificateSerialNumber(certificate, bytes, count));
            byte[] expected = Arrays.copyOf(bytes, count < 0 ? 4 : count);
            byte[] stored = Bytes.get((buffer, length) -> dll_GetCertificateSerialNumber(certificate, buffer, length));
            equal(Arrays.toString(expected), Arrays.toString(stored), "count " + count);
        }
        equal(49, dll_SetCertificateSerialNumber(certificate, bytes, 5), "count beyond the array");
        equal(49, dll_SetCertificateSerialNumber(certificate, null, 1), "count of null");
        equal(32, dll_SetCertificateSerialNumber(certificate, null, 0), "null");
        equal(49, dll_SetCertificateSerialNumber(certificate, new byte[0], 1), "count of an empty array");
        ok(dll_FreeCertificate(certificate));
        equal(49, dll_IsOidEquals(new byte[0], Oid.of("1.2")), "an identifier of no bytes");
        equal(49, dll_IsOidEquals(new byte[] {2, 42}, Oid.of("1.2")), "an identifier cut short");
        equal(1, dll_IsOidEquals(new byte[] {1, 42, 9}, Oid.of("1.2")), "an identifier in a longer array");
        equal(49, dll_sha1(bytes, 4, new byte[19]), "a digest in 19 bytes");
    }

    private static void handlesAndNumbers() {
        long[] handle = {5, 6};
        ok(dll_CreateLibraryTime(handle));
        equal(6L, handle[1], "element after it");
        equal(49, dll_CreateLibraryTime(null), "null");
        equal(49, dll_CreateLibraryTime(new long[0]), "empty");
        ok(dll_SetLibraryTime(handle[0], 31, 12, 2030, 23, 59, 58));
        int[][] parts = new int[6][1];
        ok(dll_GetLibraryTime(handle[0], parts[0], parts[1], parts[2], parts[3], parts[4], parts[5]));
        equal("[[31], [12], [2030], [23], [59], [58]]", Arrays.deepToString(parts), "time");
        equal(49, dll_GetLibraryTime(handle[0], parts[0], parts[1], null, parts[3], parts[4], parts[5]), "null part");
        ok(dll_FreeLibraryTime(handle[0]));

        dll_GetCertificateVersion(0, new int[1]);
        int[] line = {-1};
        equal(true, dll_GetLastFileErrorAsn(line) != 0 && line[0] > 0, "failure record");
        equal(49L, dll_AllocAsn1Integer_s(new byte[1], 2), "a handle can't be told from this status");
        equal(3, dll_GetAsn1ValueLength(new long[] {dll_AllocAsn1Integer_s(new byte[3], 3)}), "a handle");
    }

    private static int statusOf(Case failing) throws Exception {
        try {
            failing.run();
        } catch (TlvforgeException failure) {
            return failure.status();
        }
        throw new AssertionError("nothing was thrown");
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
        try {
            closed.get();
            throw new AssertionError("the address of a freed object");
        } catch (IllegalStateException expected) {
            // as it should be
        }
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
        equal("Ё", Bytes.text(utf8("Ё\0")), "text");
    }

    private static void versionText() {
        StringBuffer text = new StringBuffer("before");
        ok(dll_GetVersionInfo(text));
        equal(true, text.toString().startsWith("TLVFORGE v1.0 (64bit)"), text.toString());
    }

    private static KeyPair keys;
    private static byte[] certificateDer;

    private static byte[] sign(byte[] bytes) throws Exception {
        Signature signer = Signature.getInstance("SHA256withECDSA");
        signer.initSign(keys.getPrivate());
        signer.update(bytes);
        return signer.sign();
    }

    private static void certificate() throws Exception {
        KeyPairGenerator generator = KeyPairGenerator.getInstance("EC");
        generator.initialize(256);
        keys = generator.generateKeyPair();
        byte[] spki = keys.getPublic().getEncoded();
        byte[][] parts = Bytes.get(3,
                (b, l) -> dll_DecodeSubjectPublicKeyInfo(spki, spki.length, b[0], l[0], b[1], l[1], b[2], l[2]));

        long certificate = Handle.lent(Tlvforge::dll_CreateCertificate);
        ok(dll_SetCertificateVersion(certificate, 2));
        ok(dll_SetCertificateSerialNumber(certificate, new byte[] {0x41, 0x42}, 2));
        String[][] subject = {{"2.5.4.6", "RU"}, {"2.5.4.10", "Кузница"}, {"2.5.4.3", "Подписант Ё"}};
        for (long name : new long[] {Handle.lent(handle -> dll_GetCertificateSubject(certificate, handle)),
                Handle.lent(handle -> dll_GetCertificateIssuer(certificate, handle))}) {
            for (String[] entry : subject) {
                byte[] value = utf8(entry[1]);
                int tag = entry[1].equals("RU") ? 19 : 12;
                ok(dll_AddX509NameEntry(name, value, value.length, tag, Oid.of(entry[0]), 1));
            }
        }
        long from = time(1, 2, 2024), to = time(3, 4, 2054);
        ok(dll_SetCertificateValidNotBefore(certificate, from));
        ok(dll_SetCertificateValidNotAfter(certificate, to));
        ok(dll_SetCertificatePublicKeyAlgorithmOidAndParameters(certificate, parts[0], parts[2], parts[2].length));
        ok(dll_SetCertificatePublicKey(certificate, parts[1], parts[1].length));
        byte[] constraints = Bytes.get((buffer, length) -> dll_EncodeExtensionBasicConstraints(1, 3, buffer, length));
        long extensions = Handle.lent(handle -> dll_GetCertificateExtensions(certificate, handle));
        ok(dll_AddX509ExtensionsExtension(extensions, Oid.of("2.5.29.19"), 1, constraints, constraints.length));
        ok(dll_SetCertificateSignatureAlgorithmOidAndParameters(certificate, Oid.of("1.2.840.10045.4.3.2"), null, 0));
        byte[] signature = sign(Bytes.get((b, l) -> dll_GetCertificateToBeSignedPart(certificate, b, l)));
        ok(dll_SetCertificateSignature(certificate, signature, signature.length));
        certificateDer = Bytes.get((buffer, length) -> dll_EncodeCertificate(certificate, buffer, length));
        Files.write(directory.resolve("certificate.der"), certificateDer);

        X509Certificate parsed = (X509Certificate) CertificateFactory.getInstance("X.509")
                .generateCertificate(new ByteArrayInputStream(certificateDer));
        parsed.verify(keys.getPublic());
        equal(new X500Principal("CN=Подписант Ё, O=Кузница, C=RU"), parsed.getSubjectX500Principal(), "subject");
        equal(BigInteger.valueOf(0x4142), parsed.getSerialNumber(), "serial number");
        equal(Date.from(Instant.parse("2054-04-03T12:30:45Z")), parsed.getNotAfter(), "notAfter");
        equal(3, parsed.getBasicConstraints(), "path length");

        long again = Handle.lent(handle -> dll_DecodeCertificate(certificateDer, certificateDer.length, handle));
        byte[] encoded = Bytes.get((buffer, length) -> dll_EncodeCertificate(again, buffer, length));
        equal(true, Arrays.equals(certificateDer, encoded), "the same bytes again");
        for (long handle : new long[] {certificate, again}) ok(dll_FreeCertificate(handle));
        for (long handle : new long[] {from, to}) ok(dll_FreeLibraryTime(handle));
    }

    private static byte[] signWith(byte[] existing, byte[] content, long time) throws Exception {
        byte[] digest = MessageDigest.getInstance("SHA-256").digest(content);
        byte[] signature = sign(
                Bytes.get((buffer, length) -> dll_GetCmsSignedDataToBeSignedPart(digest, 32, time, buffer, length)));
        int existingLength = existing == null ? 0 : existing.length;
        return Bytes.get((buffer, length) -> dll_CreateCmsFileSignature2(content, content.length, digest, 32, time,
                Oid.of("2.16.840.1.101.3.4.2.1"), null, 0, certificateDer, certificateDer.length, certificateDer,
                new int[1], 1, Oid.of("1.2.840.10045.4.3.2"), null, 0, 1, 0, 0, signature, signature.length, existing,
                existingLength, buffer, length));
    }

    /** Two signers; the file routines take one away and read the time of the other, under a name in CP1251. */
    private static void signedDocument() throws Exception {
        byte[] content = utf8("Документ");
        long first = time(5, 6, 2024), second = time(7, 8, 2025), left = time(1, 1, 2000), read = time(1, 1, 2000);
        byte[] document = signWith(signWith(null, content, first), content, second);
        ok(dll_GetBufferCmsSignatureTime(2, document, document.length, left));
        Path plain = Files.write(directory.resolve("signed.p7s"), document);
        equal(49, dll_CreateCmsFileSignature2(content, 1, content, 1, first, Oid.of("1.2"), null, 0, document, 1,
                certificateDer, new int[1], 2, Oid.of("1.2"), null, 0, 1, 0, 0, content, 1, null, 0, null, new int[1]),
                "two certificates in one array");

        String name = "Подпись № 1 ёЁ.p7s";
        ok(dll_DeleteCmsSignerInfo(1, plain.toString(), directory + "/" + name));
        ok(dll_GetCmsSignatureTime(1, directory + "/" + name, read));
        equal(0, dll_CompareTime(read, left), "time of the signer that is left");
        equal(StatusNotFound, dll_GetCmsSignatureTime(2, directory + "/" + name, read), "the one that isn't");
        byte[] text = new byte[200];
        int[] length = new int[1];
        ok(dll_GetCmsSignatureTimeAndCN(1, directory + "/" + name, read, text, length));
        Charset cp1251 = Charset.forName("windows-1251");
        equal("AB, Подписант Ё", new String(text, 0, length[0], cp1251), "signer");

        Process list = new ProcessBuilder("ls", directory.toString()).start();
        equal(true, new String(list.getInputStream().readAllBytes(), cp1251).contains(name), "the name of the file");
        equal(StatusFileOpenFailed, dll_GetCmsSignatureTime(1, directory + "/нет", read), "no such file");
        for (long time : new long[] {first, second, left, read}) ok(dll_FreeLibraryTime(time));
    }

    private static long residentKilobytes() throws Exception {
        for (String line : Files.readAllLines(Path.of("/proc/self/status"))) {
            if (line.startsWith("VmRSS:")) return Long.parseLong(line.replaceAll("\\D", ""));
        }
        throw new AssertionError("no VmRSS");
    }

    /** Whatever a call kept, a tree or an array of 16 KB, would show after so many. */
    private static void memoryStays() throws Exception {
        byte[] large = Arrays.copyOf(certificateDer, 16384);
        byte[] buffer = new byte[16384];
        int[] length = new int[1];
        long[] handle = new long[1];
        long before = 0;
        for (int i = 0; i < 120_000; ++i) {
            if (i == 20_000) before = residentKilobytes();
            ok(dll_DecodeCertificate(large, large.length, handle));
            ok(dll_EncodeCertificate(handle[0], buffer, length));
            equal(49, dll_EncodeCertificate(handle[0], new byte[1], length), "a small buffer");
            equal(49, dll_SetCertificateSerialNumber(handle[0], large, large.length + 1), "a large count");
            ok(dll_FreeCertificate(handle[0]));
        }
        long grown = residentKilobytes() - before;
        equal(true, grown < 32_000, "growth of " + grown + " KB");
    }
}
