import static java.util.Map.entry;
import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.function.Consumer;
import java.util.stream.IntStream;
import kestrelon.x509.tlvforge.Tlvforge;

/** Names, and extensions, each through the codec that goes with its identifier. */
final class Extensions {
    private static final String[] KEY_USAGES = {"digitalSignature", "nonRepudiation", "keyEncipherment",
            "dataEncipherment", "keyAgreement", "keyCertSign", "cRLSign", "encipherOnly", "decipherOnly"};
    private static final String[] NETSCAPE_TYPES = {"SSL client", "SSL server", "S/MIME", "object signing", "reserved",
            "SSL CA", "S/MIME CA", "object signing CA"};
    private static final String[] REASON_CODES = {"unspecified", "keyCompromise", "cACompromise", "affiliationChanged",
            "superseded", "cessationOfOperation", "certificateHold", null, "removeFromCRL", "privilegeWithdrawn",
            "aACompromise"};
    private static final String[] REVOCATION_REASONS = {"unused", "keyCompromise", "cACompromise", "affiliationChanged",
            "superseded", "cessationOfOperation", "certificateHold", "privilegeWithdrawn", "aACompromise"};

    private interface BytesDecoder { int call(byte[] data, int length, byte[] buffer, int[] bufferLength); }

    private interface NumberDecoder { int call(byte[] data, int length, int[] number); }

    private interface Name { int call(int[] alternative, byte[] value, int[] length); }

    private interface Count { int call(long list, int[] count); }

    private interface Member { void print(long list, int index); }

    private final Outline out;
    private final Elements elements;

    private final Map<String, Consumer<byte[]>> codecs = Map.ofEntries(
            entry("2.5.29.14", value -> printBytes(value, Tlvforge::dll_DecodeExtensionSubjectKeyIdentifier)),
            entry("2.5.29.15", value -> printFlags("usage", value, Tlvforge::dll_DecodeExtensionKeyUsage, KEY_USAGES)),
            entry("2.5.29.16", this::printPrivateKeyUsagePeriod),
            entry("2.5.29.17", this::printAlternativeNames), // of the subject
            entry("2.5.29.18", this::printAlternativeNames), // of the issuer
            entry("2.5.29.19", this::printBasicConstraints),
            entry("2.5.29.20", value -> printBytes(value, Tlvforge::dll_DecodeExtensionCrlNumber)),
            entry("2.5.29.21", this::printReasonCode),
            entry("2.5.29.24", this::printInvalidityDate),
            entry("2.5.29.27", value -> printBytes(value, Tlvforge::dll_DecodeExtensionDeltaCrlIndicator)),
            entry("2.5.29.28", this::printIssuingDistributionPoint),
            entry("2.5.29.29", this::printAlternativeNames), // of the issuer of a certificate in a CRL
            entry("2.5.29.31", this::printDistributionPoints),
            entry("2.5.29.32", this::printPolicies),
            entry("2.5.29.35", this::printAuthorityKeyIdentifier),
            entry("2.5.29.37", this::printExtendedKeyUsage),
            entry("2.5.29.46", this::printDistributionPoints), // of the freshest CRL
            entry("1.3.6.1.5.5.7.1.1", this::printInformationAccess),
            entry("1.3.6.1.5.5.7.1.11", this::printInformationAccess), // of the subject
            entry("1.3.6.1.5.5.7.48.1.2", value -> printBytes(value, Tlvforge::dll_DecodeExtensionOcspNonce)),
            entry("1.3.6.1.5.5.7.48.1.4", this::printExtendedKeyUsage), // types of OCSP responses, identifiers as well
            entry("1.3.6.1.4.1.311.21.10", this::printPolicies), // of applications
            entry("2.16.840.1.113730.1.1", value -> printFlags(
                    "type", value, Tlvforge::dll_DecodeExtensionNetscapeCertificateType, NETSCAPE_TYPES)),
            entry("1.2.643.100.111", value -> printText(value, Tlvforge::dll_DecodeExtensionSubjectSignTool)),
            entry("1.2.643.100.112", this::printIssuerSignTool),
            entry("1.2.643.3.123.3.1", value -> printText(value, Tlvforge::dll_DecodeExtensionZelcryptKeyIdentifier)));

    Extensions(Outline out, Elements elements) {
        this.out = out;
        this.elements = elements;
    }

    void print(long extensions) {
        int count = Library.number(n -> dll_GetX509ExtensionsExtensionsCount(extensions, n));
        if (count == 0) return;
        out.section("Extensions", () -> IntStream.range(0, count).forEach(i -> printExtension(extensions, i)));
    }

    private void printExtension(long extensions, int index) {
        out.field("extension", () -> {
            int[] critical = new int[1];
            byte[][] parts = Library.bytes(2,
                    (b, l) -> dll_GetX509ExtensionsExtension(extensions, index, b[0], l[0], critical, b[1], l[1]));
            out.section(Text.describeOid(parts[0]) + (critical[0] != 0 ? ", critical" : ""),
                    () -> elements.printValue("value", codecs, parts[0], parts[1]));
        });
    }

    // --- Names ---

    void printName(String label, long name) {
        int rdns = Library.number(n -> dll_GetX509NameRdnCount(name, n));
        if (rdns == 0) {
            out.line(label, "empty");
            return;
        }
        out.section(label, () -> out.field("entries", () -> IntStream.range(0, rdns).forEach(rdn -> {
            int entries = Library.number(n -> dll_GetX509NameEntryCount(name, rdn, n));
            IntStream.range(0, entries).forEach(i -> out.field("entry", () -> printNameEntry(name, rdn, i)));
        })));
    }

    /** An entry that joins the one before it in a set of several is marked with a plus sign. */
    private void printNameEntry(long name, int rdn, int index) {
        byte[] tagClass = new byte[1], constructed = new byte[1], tag = new byte[1];
        byte[][] parts = Library.bytes(2, (b, l) -> dll_GetX509NameEntryExt(
                name, rdn, index, b[0], l[0], tagClass, constructed, tag, b[1], l[1]));
        String label = (index > 0 ? "+ " : "") + Text.describeOid(parts[1]);
        byte identifier = (byte) (tagClass[0] | constructed[0]);
        String text = identifier == 0 ? Text.ofType(tag[0], parts[0]) : null;
        if (text != null) {
            out.line(label, text);
        } else {
            out.hex(String.format("%s, class %02X tag %d", label, identifier, tag[0] & 0xFF), parts[0]);
        }
    }

    private void printGeneralNames(long names) {
        int count = Library.number(n -> dll_GetX509GeneralNameCount(names, n));
        if (count == 0) out.line("no names");
        IntStream.range(0, count).forEach(i ->
                printGeneralName((alternative, b, l) -> dll_GetX509GeneralName(names, i, alternative, b, l)));
    }

    private void printGeneralName(Name name) {
        out.field("general name", () -> {
            int[] alternative = new int[1];
            byte[] value = Library.bytes((b, l) -> name.call(alternative, b, l));
            printGeneralName(alternative[0], value);
        });
    }

    private void printGeneralName(int alternative, byte[] value) {
        switch (alternative) {
            case 0 -> printOtherName(value);
            case 1 -> out.line("e-mail", Text.ascii(value));
            case 2 -> out.line("DNS", Text.ascii(value));
            case 3 -> out.hex("X.400 address", value);
            case 4 -> printDirectoryName(value);
            case 5 -> out.hex("EDI party name", value);
            case 6 -> out.line("URI", Text.ascii(value));
            case 7 -> printAddress(value);
            case 8 -> out.line("registered ID", Text.describeOid(value));
            default -> out.hex("alternative " + alternative, value);
        }
    }

    /** A type and a value under the tag [0], which are shown where they can be told apart. */
    private void printOtherName(byte[] value) {
        Elements.Element outer = Elements.read(value);
        List<Elements.Element> parts = outer == null ? List.of() : Elements.readAll(outer.content());
        if (parts.size() < 2) {
            out.hex("other name", value);
            return;
        }
        out.section("other name", () -> {
            elements.print("type", parts.get(0).whole());
            elements.print("value", parts.get(1).content());
        });
    }

    private void printDirectoryName(byte[] value) {
        try {
            Elements.printDecoded(value, Tlvforge::dll_DecodeX509Name, Tlvforge::dll_FreeX509Name,
                    name -> printName("directory name", name));
        } catch (Library.StatusException refused) {
            out.line("directory name", refused.getMessage());
            elements.print("value", value);
        }
    }

    private void printAddress(byte[] value) {
        if (value.length != 4 && value.length != 16) {
            out.hex("IP address", value);
            return;
        }
        StringBuilder text = new StringBuilder();
        for (int at = 0; at < value.length; at += value.length == 4 ? 1 : 2) {
            if (at > 0) text.append(value.length == 4 ? "." : ":");
            int high = value[at] & 0xFF;
            text.append(value.length == 4 ? high : Integer.toHexString(high << 8 | value[at + 1] & 0xFF));
        }
        out.line("IP address", text.toString());
    }

    // --- Values of one field ---

    private void printBytes(byte[] value, BytesDecoder decoder) {
        out.hex("value", Library.bytes((b, l) -> decoder.call(value, value.length, b, l)));
    }

    private void printText(byte[] value, BytesDecoder decoder) {
        out.line("text", Text.utf8(Library.bytes((b, l) -> decoder.call(value, value.length, b, l))));
    }

    private void printFlags(String label, byte[] value, NumberDecoder decoder, String[] names) {
        out.line(label, Text.describeFlags(Library.number(n -> decoder.call(value, value.length, n)), names));
    }

    private void printReasonCode(byte[] value) {
        int reason = Library.number(n -> dll_DecodeExtensionReasonCode(value, value.length, n));
        out.line("reason", Text.describeNumber(reason, REASON_CODES));
    }

    private void printInvalidityDate(byte[] value) {
        try (var time = Library.newTime()) {
            Library.check(dll_DecodeExtensionInvalidityDate(value, value.length, time.handle()));
            out.line("invalid since", Library.text(time) + "Z");
        }
    }

    // --- Values of several fields ---

    private void printBasicConstraints(byte[] value) {
        byte[] authority = new byte[1];
        int pathLength =
                Library.number(n -> dll_DecodeExtensionBasicConstraints(value, value.length, authority, n));
        out.line("CA", authority[0] != 0 ? "yes" : "no");
        if (pathLength != -1) out.line("path length", Integer.toUnsignedString(pathLength));
    }

    private void printPrivateKeyUsagePeriod(byte[] value) {
        try (var notBefore = Library.newTime(); var notAfter = Library.newTime()) {
            Library.check(dll_DecodeExtensionPrivateKeyUsagePeriod(
                    value, value.length, notBefore.handle(), notAfter.handle()));
            if (dll_IsLibraryTimeNull(notBefore.handle()) == 0) out.line("not before", Library.text(notBefore) + "Z");
            if (dll_IsLibraryTimeNull(notAfter.handle()) == 0) out.line("not after", Library.text(notAfter) + "Z");
        }
    }

    /** Parts are no longer than the whole, so that one call makes the object and fills the buffers. */
    private void printAuthorityKeyIdentifier(byte[] value) {
        byte[] keyId = new byte[value.length], serial = new byte[value.length];
        int[] keyIdLength = new int[1], serialLength = new int[1];
        try (var issuer = new Library.Owned(made -> dll_DecodeExtensionAuthorityKeyIdentifier(
                value, value.length, keyId, keyIdLength, made, serial, serialLength),
                Tlvforge::dll_FreeX509GeneralNames)) {
            if (keyIdLength[0] != 0) out.hex("key", Arrays.copyOf(keyId, keyIdLength[0]));
            if (issuer.handle() != 0) out.section("issuer", () -> printGeneralNames(issuer.handle()));
            if (serialLength[0] != 0) out.hex("serial number", Arrays.copyOf(serial, serialLength[0]));
        }
    }

    // The fields as the library reads them: the reasons have the tag [1] too, and what stands behind another tag than
    // the next ones is ignored.
    private static final int[] POINT_TAGS = {0, 1, 2, 1, 4, 5};
    private static final int POINT_REASONS = 3;
    private static final String[] POINT_TEXTS = {"has a full name", "only user certificates", "only CA certificates",
            "only for the reasons", "indirect CRL", "only attribute certificates"};

    /** In Java the library only checks the value. */
    private void printIssuingDistributionPoint(byte[] value) {
        Library.check(dll_DecodeExtensionIssuingDistributionPoint(value, value.length));
        Elements.Element point = Elements.read(value);
        if (point == null) {
            elements.print("value", value); // of indefinite length
            return;
        }
        var fields = Elements.readAll(point.content()).iterator();
        Elements.Element field = fields.hasNext() ? fields.next() : null;
        for (int i = 0; i < POINT_TAGS.length && field != null; ++i) {
            // The library stops in front of the reasons under their standard tag. Here they are read.
            boolean standard = i == POINT_REASONS && field.tag() == 3;
            if (field.tagClass() != 0x80 || field.tag() != POINT_TAGS[i] && !standard) continue;
            byte[] content = field.content();
            if (i == 0 && content.length > 0 && (content[0] & 0xFF) != 0xA0) return; // a name in another form
            if (i == POINT_REASONS) {
                out.line(POINT_TEXTS[i], Text.describeFlags(flagWord(content), REVOCATION_REASONS));
            } else if (content.length > 0 && content[0] != 0) {
                out.line(POINT_TEXTS[i]);
            }
            field = fields.hasNext() ? fields.next() : null;
        }
    }

    /** Behind the number of unused bits, the lowest byte first. */
    private static int flagWord(byte[] bits) {
        int flags = 0;
        for (int i = 1; i < bits.length && i <= 4; ++i) flags |= (bits[i] & 0xFF) << 8 * (i - 1);
        return flags;
    }

    /** The tools of a qualified certificate and of its issuer, each with the document that vouches for it. */
    private void printIssuerSignTool(byte[] value) {
        String[] labels = {"sign tool", "CA tool", "certificate of the sign tool", "certificate of the CA tool"};
        byte[][] texts = new byte[4][value.length];
        int[][] lengths = new int[4][1];
        Library.check(dll_DecodeExtensionIssuerSignTool(value, value.length, texts[0], lengths[0], texts[1], lengths[1],
                texts[2], lengths[2], texts[3], lengths[3]));
        for (int i = 0; i < 4; ++i) out.line(labels[i], Text.utf8(Arrays.copyOf(texts[i], lengths[i][0])));
    }

    // --- Lists ---

    private static void printList(
            byte[] value, Library.Decoder decoder, Library.Free free, Count count, Member member) {
        try (var list = Library.decode(value, decoder, free)) {
            int members = Library.number(n -> count.call(list.handle(), n));
            for (int i = 0; i < members; ++i) member.print(list.handle(), i);
        }
    }

    private void printAlternativeNames(byte[] value) {
        Elements.printDecoded(value, Tlvforge::dll_DecodeX509GeneralNames, Tlvforge::dll_FreeX509GeneralNames,
                this::printGeneralNames);
    }

    private void printExtendedKeyUsage(byte[] value) {
        printList(value, Tlvforge::dll_DecodeExtensionExtendedKeyUsage, Tlvforge::dll_FreeExtensionExtendedKeyUsage,
                Tlvforge::dll_GetExtensionExtendedKeyUsageCount, (list, index) -> out.line(Text.describeOid(
                        Library.bytes((b, l) -> dll_GetExtensionExtendedKeyUsage(list, index, b, l)))));
    }

    private void printInformationAccess(byte[] value) {
        printList(value, Tlvforge::dll_DecodeExtensionAuthorityInformationAccess,
                Tlvforge::dll_FreeExtensionAuthorityInformationAccess,
                Tlvforge::dll_GetExtensionAuthorityInformationAccessCount, (list, index) -> {
                    long[] location = new long[1];
                    byte[] method = Library.bytes(
                            (b, l) -> dll_GetExtensionAuthorityInformationAccess(list, index, b, l, location));
                    out.section(Text.describeOid(method), () -> printGeneralName(
                            (alternative, b, l) -> dll_GetX509GeneralNameValue(location[0], alternative, b, l)));
                });
    }

    private void printDistributionPoints(byte[] value) {
        printList(value, Tlvforge::dll_DecodeExtensionCrlDistributionPoints,
                Tlvforge::dll_FreeExtensionCrlDistributionPoints,
                Tlvforge::dll_GetExtensionCrlDistributionPointsCount, (list, index) -> {
                    long[] fullName = new long[1], relativeName = new long[1], crlIssuer = new long[1];
                    int reasons = Library.number(n -> dll_GetExtensionCrlDistributionPoint(
                            list, index, fullName, relativeName, n, crlIssuer));
                    out.section("point", () -> {
                        if (fullName[0] != 0) printGeneralNames(fullName[0]);
                        if (relativeName[0] != 0) printName("relative to the issuer", relativeName[0]);
                        if (reasons != 0) out.line("reasons", Text.describeFlags(reasons, REVOCATION_REASONS));
                        if (crlIssuer[0] != 0) out.section("CRL issuer", () -> printGeneralNames(crlIssuer[0]));
                    });
                });
    }

    private void printPolicies(byte[] value) {
        printList(value, Tlvforge::dll_DecodeExtensionCertificatePolicies,
                Tlvforge::dll_FreeExtensionCertificatePolicies, Tlvforge::dll_GetExtensionPolicyInformationCount,
                (list, index) -> {
                    byte[] oid = Library.bytes((b, l) -> dll_GetExtensionPolicyInformation(list, index, b, l));
                    out.section(Text.describeOid(oid), () -> {
                        int count = Library.number(n -> dll_GetExtensionPolicyQualifiersCount(list, index, n));
                        IntStream.range(0, count).forEach(i -> printPolicyQualifier(list, index, i));
                    });
                });
    }

    /** A notice to the user is a SEQUENCE of an optional reference and an optional text. */
    private void printPolicyQualifier(long list, int policy, int index) {
        byte[][] parts = Library.bytes(2,
                (b, l) -> dll_GetExtensionPolicyQualifier(list, policy, index, b[0], l[0], b[1], l[1]));
        Elements.Element element = Elements.read(parts[1]);
        if (element == null || !element.isUniversal(16)) {
            elements.print(Text.describeOid(parts[0]), parts[1]);
            return;
        }
        out.section(Text.describeOid(parts[0]), () -> {
            for (Elements.Element part : Elements.readAll(element.content())) {
                elements.print(part.isUniversal(16) ? "reference" : "text", part.whole());
            }
        });
    }
}
