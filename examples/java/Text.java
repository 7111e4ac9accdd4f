import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.IOException;
import java.io.InputStream;
import java.io.InputStreamReader;
import java.io.UncheckedIOException;
import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.Charset;
import java.nio.charset.CharsetDecoder;
import java.nio.charset.StandardCharsets;
import java.util.Properties;
import java.util.StringJoiner;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/** Text for the screen: of strings in documents, identifiers, and numbers that have names. */
final class Text {
    private Text() {}

    // --- Strings. What can't be shown comes out as \\u{202E}, or as \xFF where it isn't even a character ---

    /** The text of an element with this universal tag; null for types that aren't text, and for broken lengths. */
    static String ofType(int tag, byte[] bytes) {
        return switch (tag) {
            case 12 -> utf8(bytes); // UTF8String
            case 18, 19, 22, 23, 24, 26 -> ascii(bytes); // Numeric, Printable, IA5, UTCTime, GeneralizedTime, Visible
            case 20 -> decode(bytes, StandardCharsets.ISO_8859_1); // TeletexString, which should be T.61
            case 28 -> bytes.length % 4 == 0 ? universal(bytes) : null; // UniversalString
            case 30 -> bytes.length % 2 == 0 ? bmp(bytes) : null; // BMPString
            default -> null;
        };
    }

    static String ascii(byte[] bytes) {
        return decode(bytes, StandardCharsets.US_ASCII);
    }

    static String utf8(byte[] bytes) {
        return decode(bytes, StandardCharsets.UTF_8);
    }

    private static String decode(byte[] bytes, Charset charset) {
        StringBuilder shown = new StringBuilder();
        CharsetDecoder decoder = charset.newDecoder();
        ByteBuffer in = ByteBuffer.wrap(bytes);
        CharBuffer out = CharBuffer.allocate(bytes.length);
        while (decoder.decode(in, out.clear(), true).isError()) {
            shown.append(show(out.flip().toString())).append(String.format("\\x%02X", in.get()));
        }
        return shown.append(show(out.flip().toString())).toString();
    }

    /** There should be no surrogates; pairs are found all the same, and mean what they mean in UTF-16. */
    private static String bmp(byte[] bytes) {
        return show(ByteBuffer.wrap(bytes).asCharBuffer().toString());
    }

    private static String universal(byte[] bytes) {
        StringBuilder text = new StringBuilder();
        for (ByteBuffer in = ByteBuffer.wrap(bytes); in.hasRemaining();) {
            int character = in.getInt();
            text.appendCodePoint(Character.isValidCodePoint(character) ? character : 0xFFFD);
        }
        return show(text.toString());
    }

    // What moves the cursor, turns the direction of writing or can't be seen, and halves of pairs.
    private static final Pattern INVISIBLE = Pattern.compile("[\\x00-\\x1F\\x7F-\\x9F\\xAD\\u200B-\\u200F"
            + "\\u2028-\\u202E\\u2060-\\u206F\\x{D800}-\\x{DFFF}\\uFEFF\\uFFF9-\\uFFFB\\x{E0000}-\\x{E007F}]");

    private static String show(String text) {
        return INVISIBLE.matcher(text.replace("\\", "\\\\")).replaceAll(character ->
                Matcher.quoteReplacement(String.format("\\u{%X}", character.group().codePointAt(0))));
    }

    // --- Object identifiers ---

    /** Lines of "identifier=name", from the file beside the class. */
    private static final Properties NAMES = new Properties();

    static {
        try (InputStream file = Text.class.getResourceAsStream("oids.properties")) {
            if (file != null) NAMES.load(new InputStreamReader(file, StandardCharsets.UTF_8));
        } catch (IOException failure) {
            throw new UncheckedIOException(failure);
        }
    }

    /** Dotted text; hex where there is none. */
    static String dotted(byte[] oid) {
        if (!isConvertible(oid)) return "hex " + Outline.toHex(oid);
        byte[] text;
        try {
            text = Library.bytes((b, l) -> dll_ConvertOidToString(oid, b, l));
        } catch (Library.StatusException refused) {
            return "hex " + Outline.toHex(oid);
        }
        String dotted = new String(text, 0, text.length - 1, StandardCharsets.US_ASCII); // without its zero
        // The library splits the first number into its quotient and remainder by 40. In X.660 no first arc is above 2.
        String[] arcs = dotted.split("\\.", 3);
        long first = Long.parseLong(arcs[0]);
        if (first <= 2) return dotted;
        long second = first * 40 + Long.parseLong(arcs[1]) - 80;
        return "2." + second + (arcs.length > 2 ? "." + arcs[2] : "");
    }

    /** The library converts arcs of 32 bits. */
    private static boolean isConvertible(byte[] oid) {
        if (oid.length == 0 || (oid[0] & 0xFF) != oid.length - 1) return false;
        long arc = 0;
        for (int i = 1; i < oid.length; ++i) {
            arc = arc << 7 | oid[i] & 0x7F;
            if (arc >= 1L << 32) return false;
            if (oid[i] >= 0) arc = 0;
        }
        return true;
    }

    /** "CN (2.5.4.3)", or the numbers alone. */
    static String describeOid(byte[] oid) {
        String dotted = dotted(oid), name = NAMES.getProperty(dotted);
        return name == null ? dotted : name + " (" + dotted + ")";
    }

    // --- Numbers that have names ---

    /** Names of the bits of a flag word, from bit 0 on. Bits without a name are told by their number. */
    static String describeFlags(int flags, String... names) {
        StringJoiner text = new StringJoiner(", ").setEmptyValue("none");
        for (int bit = 0; bit < 32; ++bit) {
            if ((flags & 0x80 >> bit % 8 << bit / 8 * 8) != 0) text.add(bit < names.length ? names[bit] : "bit " + bit);
        }
        return text.toString();
    }

    /** "1 revoked", or the number alone. */
    static String describeNumber(int number, String... names) {
        return number + (number >= 0 && number < names.length && names[number] != null ? " " + names[number] : "");
    }
}
