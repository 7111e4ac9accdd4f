package kestrelon.x509.tlvforge;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;

/** Bytes and numbers that come out of methods: the arrays are made here, of the size that a first call has stored. */
public final class Bytes {
    private Bytes() {}

    /** A method with one output: <code>(b, l) -&gt; dll_EncodeCertificate(certificate, b, l)</code>. */
    @FunctionalInterface
    public interface Output {
        /**
         * @param buffer receives the bytes; null asks for their number
         * @param length element 0 receives the number
         * @return a status
         */
        int call(byte[] buffer, int[] length);
    }

    /** A method with several outputs. */
    @FunctionalInterface
    public interface Outputs {
        /**
         * @param buffers receive the bytes; each null asks for their number
         * @param lengths element 0 of each receives the number
         * @return a status
         */
        int call(byte[][] buffers, int[][] lengths);
    }

    /** A method that stores a number. */
    @FunctionalInterface
    public interface Number {
        /**
         * @param out element 0 receives the number
         * @return a status
         */
        int call(int[] out);
    }

    /**
     * Asks for the size, and then for the bytes.
     *
     * @param output the method
     * @return the bytes
     */
    public static byte[] get(Output output) {
        return get(1, (buffers, lengths) -> output.call(buffers[0], lengths[0]))[0];
    }

    /**
     * Asks for all sizes, and then for the bytes.
     *
     * @param count how many outputs the method has
     * @param outputs the method
     * @return the bytes of each output
     */
    public static byte[][] get(int count, Outputs outputs) {
        byte[][] buffers = new byte[count][];
        int[][] lengths = new int[count][1];
        TlvforgeException.check(outputs.call(buffers, lengths));
        // A byte more than asked for, as one method leaves the terminating zero out of the size.
        Arrays.setAll(buffers, i -> new byte[lengths[i][0] + 1]);
        TlvforgeException.check(outputs.call(buffers, lengths));
        Arrays.setAll(buffers, i -> Arrays.copyOf(buffers[i], lengths[i][0]));
        return buffers;
    }

    /**
     * Gets a text in UTF-8, with or without a terminating zero.
     *
     * @param output the method
     * @return the text
     */
    public static String text(Output output) {
        return text(get(output));
    }

    /**
     * Reads a text in UTF-8, with or without a terminating zero.
     *
     * @param utf8 its bytes
     * @return the text
     */
    public static String text(byte[] utf8) {
        boolean terminated = utf8.length > 0 && utf8[utf8.length - 1] == 0;
        return new String(utf8, 0, utf8.length - (terminated ? 1 : 0), StandardCharsets.UTF_8);
    }

    /**
     * Gets a number.
     *
     * @param number the method
     * @return the number
     */
    public static int number(Number number) {
        int[] out = new int[1];
        TlvforgeException.check(number.call(out));
        return out[0];
    }
}
