import static java.util.Map.entry;
import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.Consumer;
import java.util.stream.IntStream;
import kestrelon.x509.tlvforge.Tlvforge;

/**
 * Inspect [--kind KIND] FILE...: prints a readable outline of certificates, revocation lists and requests, DER or PEM.
 *
 * <p>Without a kind every kind is tried. A PEM file may hold several documents, and of several each has its file above
 * it. The exit status is 0 when everything was outlined, 1 when some document couldn't be, and 2 for wrong arguments.
 */
public final class Inspect {
    private final Outline out = new Outline();
    private final Elements elements = new Elements(out);
    private final Extensions extensions = new Extensions(out, elements);
    private final Map<String, Consumer<byte[]>> kinds = new LinkedHashMap<>();

    private Inspect() {
        kinds.put("certificate", value -> Elements.printDecoded(
                value, Tlvforge::dll_DecodeCertificate, Tlvforge::dll_FreeCertificate, this::printCertificate));
        kinds.put("crl", value -> Elements.printDecoded(
                value, Tlvforge::dll_DecodeX509Crl, Tlvforge::dll_FreeX509Crl, this::printCrl));
        kinds.put("request", value -> Elements.printDecoded(
                value, Tlvforge::dll_DecodePKCS10CertReq, Tlvforge::dll_FreePKCS10CertReq, this::printRequest));
    }

    public static void main(String[] arguments) {
        Inspect program = new Inspect();
        String known = String.join(" ", program.kinds.keySet());
        List<String> files = List.of(arguments);
        if (files.size() > 1 && files.get(0).equals("--kind")) {
            program.kinds.keySet().retainAll(files.subList(1, 2));
            files = files.subList(2, files.size());
        }
        Usage.answer("Inspect [--kind KIND] FILE...\nkinds: " + known, files, !program.kinds.isEmpty() && !files.isEmpty());
        boolean complete = true;
        for (String file : files) complete = program.inspectFile(file, files.size() == 1) && complete;
        System.exit(program.out.finish() && complete ? 0 : 1);
    }

    // --- Files ---

    private boolean inspectFile(String file, boolean alone) {
        byte[] bytes;
        try {
            bytes = Files.readAllBytes(Path.of(file));
        } catch (IOException failure) {
            System.err.println(file + ": can't be read");
            return false;
        }
        // Every kind of document is a SEQUENCE, and no PEM text begins with its identifier octet.
        if (bytes.length == 0 || bytes[0] != 0x30) return inspectPem(file, alone, bytes);
        out.announce(alone ? null : file);
        return inspect(file, bytes);
    }

    /** The blocks of a PEM file, each from its BEGIN line to the next one; text without such a line is one block. */
    private boolean inspectPem(String file, boolean alone, byte[] bytes) {
        String begin = "-----BEGIN", text = new String(bytes, StandardCharsets.ISO_8859_1);
        List<String> blocks = Arrays.stream(text.split("(?=" + begin + ")")).filter(b -> b.startsWith(begin)).toList();
        if (blocks.isEmpty()) blocks = List.of(text);
        boolean complete = true;
        for (int i = 0; i < blocks.size(); ++i) {
            String name = blocks.size() == 1 ? file : file + ", block " + (i + 1);
            out.announce(alone && blocks.size() == 1 ? null : name);
            byte[] block = blocks.get(i).getBytes(StandardCharsets.ISO_8859_1);
            try {
                byte[] der = Library.bytes((b, l) -> dll_DecodePem(block, block.length, b, l));
                complete = inspect(name, der) && complete;
            } catch (Library.StatusException refused) {
                System.err.println(name + ": neither DER nor PEM: " + refused.getMessage());
                complete = false;
            }
        }
        return complete;
    }

    /** Prints the document as the first kind whose decoder takes it. */
    private boolean inspect(String name, byte[] bytes) {
        StringBuilder failures = new StringBuilder();
        for (Map.Entry<String, Consumer<byte[]>> kind : kinds.entrySet()) {
            try {
                kind.getValue().accept(bytes);
            } catch (Library.StatusException refused) {
                failures.append(name + ": no " + kind.getKey() + ": " + refused.getMessage() + "\n");
                continue;
            }
            // Decoders read the element at the front and ignore what follows it.
            Elements.Element element = Elements.read(bytes);
            int rest = element == null ? 0 : bytes.length - element.whole().length;
            if (rest > 0) out.line("Behind the document", rest + " bytes");
            return true;
        }
        System.err.print(failures);
        return false;
    }

    // --- Documents. Every field is one that the library may refuse, so that no failure leaves these methods ---

    private void printCertificate(long certificate) {
        out.section("Certificate", () -> {
            printVersion(n -> dll_GetCertificateVersion(certificate, n));
            out.hexField("Serial number", (b, l) -> dll_GetCertificateSerialNumber(certificate, b, l));
            printAlgorithm("Signature algorithm", (b, l) ->
                    dll_GetCertificateSignatureAlgorithmOidAndParameters(certificate, b[0], l[0], b[1], l[1]));
            printName("Issuer", name -> dll_GetCertificateIssuer(certificate, name));
            printTime("Not before", time -> dll_GetCertificateValidNotBefore(certificate, time));
            printTime("Not after", time -> dll_GetCertificateValidNotAfter(certificate, time));
            printName("Subject", name -> dll_GetCertificateSubject(certificate, name));
            printPublicKey((b, l) ->
                    dll_GetCertificatePublicKeyAlgorithmOidAndParameters(certificate, b[0], l[0], b[1], l[1]),
                    (b, l) -> dll_GetCertificatePublicKey(certificate, b, l),
                    (b, l) -> dll_GetCertificatePublicKeyGostR3410(certificate, b, l));
            byte[] unused = new byte[1];
            printUniqueId("Issuer", unused, (b, l) -> dll_GetCertificateIssuerUniqueId(certificate, b, l, unused));
            printUniqueId("Subject", unused, (b, l) -> dll_GetCertificateSubjectUniqueId(certificate, b, l, unused));
            printExtensions(list -> dll_GetCertificateExtensions(certificate, list));
            out.startField("Signature", (b, l) -> dll_GetCertificateSignature(certificate, b, l));
        });
    }

    private void printCrl(long crl) {
        out.section("Certificate revocation list", () -> {
            printVersion(n -> dll_GetX509CrlVersion(crl, n));
            printAlgorithm("Signature algorithm", (b, l) ->
                    dll_GetX509CrlSignatureAlgorithmOidAndParameters(crl, b[0], l[0], b[1], l[1]));
            printName("Issuer", name -> dll_GetX509CrlIssuer(crl, name));
            printTime("This update", time -> dll_GetX509CrlThisUpdate(crl, time));
            printTime("Next update", time -> dll_GetX509CrlNextUpdate(crl, time));
            printExtensions(list -> dll_GetX509CrlExtensions(crl, list));
            out.field("Revoked certificates", () -> out.members("Revoked certificates",
                    Library.number(n -> dll_GetX509CrlRevokedCertificateCount(crl, n)), i -> printRevoked(crl, i)));
            out.startField("Signature", (b, l) -> dll_GetX509CrlSignature(crl, b, l));
        });
    }

    private void printRevoked(long crl, int index) {
        out.hexField("Serial number", (b, l) -> dll_GetX509CrlRevokedCertificateSerialNumber(crl, index, b, l));
        out.indented(() -> {
            printTime("revoked", time -> dll_GetX509CrlRevokedCertificateRevokationDate(crl, index, time));
            printExtensions(list -> dll_GetX509CrlRevokedCertificateExtensions(crl, index, list));
        });
    }

    private void printRequest(long request) {
        out.section("Certification request", () -> {
            printVersion(n -> dll_GetPKCS10CertReqVersion(request, n));
            printName("Subject", name -> dll_GetPKCS10CertReqSubject(request, name));
            printPublicKey((b, l) ->
                    dll_GetPKCS10CertReqPublicKeyAlgorithmOidAndParameters(request, b[0], l[0], b[1], l[1]),
                    (b, l) -> dll_GetPKCS10CertReqPublicKey(request, b, l),
                    (b, l) -> dll_GetPKCS10CertReqPublicKeyGostR3410(request, b, l));
            out.field("Attributes", () -> printAttributes(
                    Library.lent(list -> dll_GetPKCS10CertReqAttributes(request, list))));
            printAlgorithm("Signature algorithm", (b, l) ->
                    dll_GetPKCS10CertReqSignatureAlgorithmOidAndParameters(request, b[0], l[0], b[1], l[1]));
            out.startField("Signature", (b, l) -> dll_GetPKCS10CertReqSignature(request, b, l));
        });
    }

    // --- Fields that several kinds of documents have ---

    /** Version 1 is 0 on the wire. */
    private void printVersion(Library.NumberOutput get) {
        out.optionalField("Version", () -> out.line("Version", String.valueOf(Library.number(get) + 1L)));
    }

    private void printTime(String label, Library.Free get) {
        out.optionalField(label, () -> {
            try (var time = Library.newTime()) {
                Library.check(get.call(time.handle()));
                out.line(label, Library.text(time) + "Z");
            }
        });
    }

    private void printName(String label, Library.HandleOutput get) {
        out.field(label, () -> extensions.printName(label, Library.lent(get)));
    }

    private void printExtensions(Library.HandleOutput get) {
        out.field("Extensions", () -> extensions.print(Library.lent(get)));
    }

    private void printUniqueId(String owner, byte[] unused, Library.Output get) {
        String label = owner + " unique ID";
        out.optionalField(label, () -> {
            byte[] id = Library.bytes(get);
            out.hex(label + (unused[0] != 0 ? ", " + unused[0] + " unused bits" : ""), id);
        });
    }

    // --- Keys and algorithms ---

    // Numbers of GOST keys, which stand in an OCTET STRING of their own.
    private static final int GOST_2001 = 102, GOST_2012_256 = 3000, GOST_2012_512 = 3001;

    private final Map<String, Consumer<byte[]>> parameterCodecs = Map.ofEntries(
            entry("1.2.643.2.2.19", value -> printGostKeyParameters(GOST_2001, value)),
            entry("1.2.643.7.1.1.1.1", value -> printGostKeyParameters(GOST_2012_256, value)),
            entry("1.2.643.7.1.1.1.2", value -> printGostKeyParameters(GOST_2012_512, value)),
            entry("1.2.643.2.2.21", this::printGost89Parameters));

    private void printAlgorithm(String label, Library.Outputs get) {
        out.field(label, () -> {
            byte[][] parts = Library.bytes(2, get);
            out.line(label, Text.describeOid(parts[0]));
            out.indented(() -> {
                if (parts[1].length > 0) elements.printValue("parameters", parameterCodecs, parts[0], parts[1]);
            });
        });
    }

    private void printPublicKey(Library.Outputs getAlgorithm, Library.Output getKey, Library.Output getGostKey) {
        out.section("Public key", () -> {
            printAlgorithm("algorithm", getAlgorithm);
            out.startField("key", getKey);
            if (isGostKey(getAlgorithm)) out.startField("unwrapped", getGostKey);
        });
    }

    private static boolean isGostKey(Library.Outputs getAlgorithm) {
        try {
            byte[] oid = Library.bytes(2, getAlgorithm)[0];
            int id = Library.number(n -> dll_FindAlgIdByOid(oid, n));
            return id == GOST_2001 || id == GOST_2012_256 || id == GOST_2012_512;
        } catch (Library.StatusException unknown) {
            return false;
        }
    }

    private void printGostKeyParameters(int algorithm, byte[] value) {
        byte[] form = new byte[1];
        byte[][] sets = Library.bytes(3, (b, l) -> dll_DecodeAlgorithmGostR3410ParameterOids(
                algorithm, value, value.length, form, b[0], l[0], b[1], l[1], b[2], l[2]));
        if (form[0] == 0) out.line("parameters", "NULL");
        if (form[0] != 1) return;
        out.line("public key set", Text.describeOid(sets[0]));
        out.line("digest set", Text.describeOid(sets[1]));
        out.line("encryption set", Text.describeOid(sets[2]));
    }

    private void printGost89Parameters(byte[] value) {
        byte[][] parts = Library.bytes(2,
                (b, l) -> dll_DecodeGost2814789Parameters(value, value.length, b[0], l[0], b[1], l[1]));
        out.hex("initialization vector", parts[0]);
        out.line("encryption set", Text.describeOid(parts[1]));
    }

    // --- Attributes of requests ---

    private final Map<String, Consumer<byte[]>> attributeCodecs = Map.ofEntries(
            entry("1.2.840.113549.1.9.14", this::printRequestedExtensions),
            entry("1.3.6.1.4.1.311.2.1.14", this::printRequestedExtensions));

    private void printRequestedExtensions(byte[] value) {
        Elements.printDecoded(value, Tlvforge::dll_DecodeX509Extensions, Tlvforge::dll_FreeX509Extensions,
                list -> out.field("Extensions", () -> extensions.print(list)));
    }

    private void printAttributes(long attributes) {
        int count = Library.number(n -> dll_GetRsaAttributesAttributesCount(attributes, n));
        if (count == 0) return;
        out.members("Attributes", count, index -> out.field("attribute", () -> {
            byte[] oid = Library.bytes((b, l) -> dll_GetRsaAttributesAttributeOid(attributes, index, b, l));
            out.section(Text.describeOid(oid), () -> out.field("values", () -> {
                int values = Library.number(n -> dll_GetRsaAttributesAttributeValuesCount(attributes, index, n));
                if (values == 0) out.line("no values");
                IntStream.range(0, values).forEach(i -> out.field("value", () -> elements.printValue(
                        "value", attributeCodecs, oid, Library.bytes(
                                (b, l) -> dll_GetRsaAttributesAttributeValue(attributes, index, i, b, l)))));
            }));
        }));
    }
}
