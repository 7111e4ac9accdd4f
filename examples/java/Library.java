import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.util.Arrays;
import java.util.Locale;
import kestrelon.x509.tlvforge.Tlvforge;

/** How a Java program calls the library: one way to get something out, one to free, one to fail. */
final class Library {
    private Library() {}

    /** Any status but success. The stack trace tells the call. */
    static final class StatusException extends RuntimeException {
        private static final long serialVersionUID = 1;
        final int status;

        StatusException(int status) {
            super("status " + status);
            this.status = status;
        }
    }

    /** Every call that gives a status stands in here, or in one of the methods below. */
    static void check(int status) {
        if (status != StatusOk) throw new StatusException(status);
    }

    // --- What comes out ---

    interface Output { int call(byte[] buffer, int[] length); }

    interface Outputs { int call(byte[][] buffers, int[][] lengths); }

    interface NumberOutput { int call(int[] number); }

    interface HandleOutput { int call(long[] handle); }

    /** The bytes of a method that ends in a buffer and its length. */
    static byte[] bytes(Output output) {
        return bytes(1, (buffers, lengths) -> output.call(buffers[0], lengths[0]))[0];
    }

    /** The bytes of several outputs. The call is made twice: without buffers it tells the sizes, then it fills them. */
    static byte[][] bytes(int count, Outputs outputs) {
        byte[][] buffers = new byte[count][];
        int[][] lengths = new int[count][1];
        check(outputs.call(buffers, lengths));
        Arrays.setAll(buffers, i -> new byte[lengths[i][0]]);
        check(outputs.call(buffers, lengths));
        Arrays.setAll(buffers, i -> Arrays.copyOf(buffers[i], lengths[i][0]));
        return buffers;
    }

    static int number(NumberOutput output) {
        int[] number = new int[1];
        check(output.call(number));
        return number[0];
    }

    /** A handle that the library lends. It lives as long as the object that it belongs to. */
    static long lent(HandleOutput output) {
        long[] handle = new long[1];
        check(output.call(handle));
        return handle[0];
    }

    // --- What is owned ---

    interface Free { int call(long handle); }

    interface Decoder { int call(byte[] data, int length, long[] handle); }

    /** An object of the program's own, for a try block that frees it at its end. */
    static final class Owned implements AutoCloseable {
        private final Free free;
        private long handle;

        /** With the method that makes the object, and the one that frees it. */
        Owned(HandleOutput make, Free free) {
            this.free = free;
            handle = lent(make);
        }

        /** After the end it is null, which every method refuses. */
        long handle() {
            return handle;
        }

        @Override
        public void close() {
            check(free.call(handle));
            handle = 0;
        }
    }

    static Owned decode(byte[] data, Decoder decoder, Free free) {
        return new Owned(out -> decoder.call(data, data.length, out), free);
    }

    // --- Identifiers and times ---

    /** The form in which identifiers go in and come out: a length and the content of the DER encoding. */
    static byte[] oid(String dotted) {
        return bytes((buffer, length) -> dll_ConvertStringToOid(dotted, buffer, length));
    }

    static Owned newTime() {
        return new Owned(Tlvforge::dll_CreateLibraryTime, Tlvforge::dll_FreeLibraryTime);
    }

    /** "2026-11-21T08:57:57", in UTC. */
    static String text(Owned time) {
        int[][] fields = new int[6][1];
        check(dll_GetLibraryTime(time.handle(), fields[2], fields[1], fields[0], fields[3], fields[4], fields[5]));
        return String.format(Locale.ROOT, "%04d-%02d-%02dT%02d:%02d:%02d",
                Arrays.stream(fields).map(field -> field[0]).toArray());
    }
}
