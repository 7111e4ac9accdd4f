import static kestrelon.x509.tlvforge.Tlvforge.StatusAbsent;

import java.io.BufferedOutputStream;
import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.util.HexFormat;
import java.util.function.IntConsumer;

/**
 * An outline on standard output: labelled lines, indented under their sections. Whatever a document holds comes out as
 * one line of valid UTF-8 without control characters.
 */
final class Outline {
    private static final int BYTES_OF_LINE = 32, BYTES_SHOWN = 1024, LONGEST_LINE = 2000, MEMBERS_SHOWN = 20;

    private final PrintStream stream = new PrintStream(
            new BufferedOutputStream(new FileOutputStream(FileDescriptor.out)), false, StandardCharsets.UTF_8);
    private int depth = 0;
    private boolean empty = true;
    private String heading = null;

    /** Whether everything was written. */
    boolean finish() {
        return !stream.checkError();
    }

    /** Documents nest inside of each other without an end, and what stands here is better not taken apart any more. */
    boolean isDeep() {
        return depth >= 48;
    }

    /** What stands in front of the next line, if there is one before the next call; null for nothing. */
    void announce(String document) {
        heading = document;
    }

    // --- Lines ---

    void line(String text) {
        if (heading != null) stream.print((empty ? "# " : "\n# ") + heading + "\n");
        heading = null;
        empty = false;
        byte[] utf8 = text.getBytes(StandardCharsets.UTF_8);
        int shown = Math.min(utf8.length, LONGEST_LINE);
        while (shown < utf8.length && (utf8[shown] & 0xC0) == 0x80) --shown; // no part of a character
        stream.print("  ".repeat(depth));
        stream.write(utf8, 0, shown);
        stream.print(shown < utf8.length ? "... and " + (utf8.length - shown) + " bytes more\n" : "\n");
    }

    void line(String label, String text) {
        line(label + ": " + text);
    }

    void indented(Runnable print) {
        ++depth;
        try {
            print.run();
        } finally {
            --depth;
        }
    }

    void section(String title, Runnable print) {
        line(title);
        indented(print);
    }

    /** The members of a list, which may have millions. The first ones show what they are like. */
    void members(String title, int count, IntConsumer print) {
        section(title + ": " + count, () -> {
            for (int i = 0; i < Math.min(count, MEMBERS_SHOWN); ++i) print.accept(i);
            if (count > MEMBERS_SHOWN) line("and " + (count - MEMBERS_SHOWN) + " more");
        });
    }

    // --- Fields, of which the library may refuse any ---

    /** Prints a field, or its status. */
    void field(String label, Runnable print) {
        try {
            print.run();
        } catch (Library.StatusException refused) {
            line(label, refused.getMessage());
        }
    }

    /** Prints nothing for a field that is absent. */
    void optionalField(String label, Runnable print) {
        field(label, () -> {
            try {
                print.run();
            } catch (Library.StatusException refused) {
                if (refused.status != StatusAbsent) throw refused;
            }
        });
    }

    // --- Bytes ---

    static String toHex(byte[] bytes, int from, int to) {
        return HexFormat.of().withUpperCase().formatHex(bytes, from, Math.min(bytes.length, to));
    }

    static String toHex(byte[] bytes) {
        return toHex(bytes, 0, bytes.length);
    }

    /** All bytes, unless they fill a page: behind the label if they fit there, otherwise below it. */
    void hex(String label, byte[] bytes) {
        if (bytes.length <= BYTES_OF_LINE) {
            line(label, bytes.length == 0 ? "empty" : toHex(bytes));
            return;
        }
        section(label + ": " + bytes.length + " bytes", () -> {
            int shown = Math.min(bytes.length, BYTES_SHOWN);
            for (int at = 0; at < shown; at += BYTES_OF_LINE) line(toHex(bytes, at, at + BYTES_OF_LINE));
            if (shown < bytes.length) line("and " + (bytes.length - shown) + " bytes more");
        });
    }

    /** The length and the first bytes, for values that nobody reads to their end. */
    void start(String label, byte[] bytes) {
        String more = bytes.length > BYTES_OF_LINE ? "..." : "";
        line(label, bytes.length == 0 ? "empty" : bytes.length + " bytes, " + toHex(bytes, 0, BYTES_OF_LINE) + more);
    }

    void hexField(String label, Library.Output output) {
        field(label, () -> hex(label, Library.bytes(output)));
    }

    void startField(String label, Library.Output output) {
        field(label, () -> start(label, Library.bytes(output)));
    }
}
