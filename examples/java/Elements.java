import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.math.BigInteger;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.function.Consumer;
import java.util.function.LongConsumer;

/** Elements that no codec of the library takes apart, read one by one; and the choice of a codec by an identifier. */
final class Elements {
    private static final int LARGEST = 4096;
    private static final String[] TYPES = {null, "BOOLEAN", "INTEGER", "BIT STRING", "OCTET STRING", "NULL",
            "OBJECT IDENTIFIER", null, null, null, "ENUMERATED", null, "UTF8String", null, null, null, "SEQUENCE",
            "SET", "NumericString", "PrintableString", "TeletexString", null, "IA5String", "UTCTime",
            "GeneralizedTime", null, "VisibleString", null, "UniversalString", null, "BMPString"};

    /** tagClass: the two upper bits of the identifier octet. whole: with identifier and length. */
    record Element(int tagClass, boolean constructed, int tag, byte[] whole, byte[] content) {
        boolean isUniversal(int number) {
            return tagClass == 0 && tag == number;
        }

        /** "SEQUENCE", "[0]", "[APPLICATION 3]". */
        String describeTag() {
            if (tagClass == 0 && tag >= 0 && tag < TYPES.length && TYPES[tag] != null) return TYPES[tag];
            String name = Map.of(0, "UNIVERSAL ", 0x40, "APPLICATION ", 0x80, "", 0xC0, "PRIVATE ").get(tagClass);
            return "[" + name + Integer.toUnsignedString(tag) + "]";
        }

        /** The text of a primitive element that has a reading of its own, otherwise null. */
        String text() {
            if (tagClass != 0 || constructed) return null;
            return switch (tag) {
                case 1 -> content.length != 1 ? null : content[0] != 0 ? "true" : "false";
                case 2, 10 -> content.length == 0 || content.length > 4 ? null : new BigInteger(content).toString();
                case 5 -> content.length == 0 ? "NULL" : null;
                case 6 -> identifier();
                default -> Text.ofType(tag, content);
            };
        }

        private String identifier() {
            try {
                return Text.describeOid(Library.bytes((b, l) -> dll_DecodeAsn1Oid(whole, whole.length, b, l)));
            } catch (Library.StatusException refused) {
                return null;
            }
        }
    }

    /** The element at the front; null for malformed bytes and for the indefinite form. */
    static Element read(byte[] bytes) {
        byte[] tagClass = new byte[1], constructed = new byte[1];
        int[] tag = new int[1], length = new int[1], indefinite = new int[1], header = new int[1];
        int status = dll_GetAsn1ObjectInfo(
                bytes, bytes.length, tagClass, constructed, tag, length, indefinite, header);
        long end = header[0] + Integer.toUnsignedLong(length[0]);
        if (status != StatusOk || indefinite[0] != 0 || end > bytes.length) return null;
        return new Element(tagClass[0] & 0xFF, constructed[0] != 0, tag[0], Arrays.copyOf(bytes, (int) end),
                Arrays.copyOfRange(bytes, header[0], (int) end));
    }

    /** The elements up to the end, or to the first one that can't be read. */
    static List<Element> readAll(byte[] bytes) {
        List<Element> elements = new ArrayList<>();
        byte[] rest = bytes;
        for (Element next = read(rest); next != null; next = read(rest)) {
            elements.add(next);
            rest = Arrays.copyOfRange(rest, next.whole.length, rest.length);
        }
        return elements;
    }

    private final Outline out;

    Elements(Outline out) {
        this.out = out;
    }

    /**
     * A number, an identifier, text, hex, or the elements inside. Of a large one the first bytes are shown, and bytes
     * that are no element are hex. Inside of another one, which is without a label, the tag stands for it.
     */
    void print(String label, byte[] bytes) {
        Element element = bytes.length <= LARGEST ? read(bytes) : null;
        if (bytes.length > LARGEST) {
            out.start(label, bytes);
        } else if (element == null || element.whole.length != bytes.length) {
            out.hex(label, bytes);
        } else {
            print(label, element);
        }
    }

    private void print(String label, Element element) {
        boolean inside = label.isEmpty();
        String tag = element.describeTag(), title = inside ? tag : label, text = element.text();
        if (inside && text != null && element.isUniversal(5)) {
            out.line(tag);
        } else if (text != null) {
            out.line(title, text);
        } else if (element.constructed && element.content.length > 0 && !out.isDeep()) {
            out.section(title, () -> printContent(element.content));
        } else if (inside) {
            out.start(tag, element.content);
        } else {
            out.hex(label + ", " + tag, element.content);
        }
    }

    private void printContent(byte[] content) {
        int read = 0;
        for (Element element : readAll(content)) {
            print("", element.whole);
            read += element.whole.length;
        }
        // The indefinite form among others.
        if (read < content.length) out.start("unread", Arrays.copyOfRange(content, read, content.length));
    }

    /** Prints nothing unless the decoder takes the bytes. */
    static void printDecoded(byte[] value, Library.Decoder decoder, Library.Free free, LongConsumer print) {
        try (var object = Library.decode(value, decoder, free)) {
            print.accept(object.handle());
        }
    }

    /** A value whose identifier is in no row, or that its codec refuses, is an element. */
    void printValue(String label, Map<String, Consumer<byte[]>> codecs, byte[] oid, byte[] value) {
        Consumer<byte[]> codec = out.isDeep() ? null : codecs.get(Text.dotted(oid));
        try {
            if (codec != null) {
                codec.accept(value);
                return;
            }
        } catch (Library.StatusException refused) {
            out.line(refused.getMessage());
        }
        print(label, value);
    }
}
