package kestrelon.x509.tlvforge;

import java.lang.ref.Cleaner;
import java.lang.ref.Reference;

/**
 * An object that the program owns. {@link #close} frees it, so it stands in a try with resources; an object that is
 * forgotten is freed after its handle has become unreachable.
 *
 * <p>The handle must stay reachable for as long as its address is in use, and so must the handle of a whole while
 * something that it lends is in use. It belongs to one thread at a time, as the object does.
 */
public final class Handle implements AutoCloseable {
    /** A method that stores the handle of an object, as <code>Tlvforge::dll_CreateCertificate</code>. */
    @FunctionalInterface
    public interface Output {
        /**
         * @param out element 0 receives the handle
         * @return a status
         */
        int call(long[] out);
    }

    /** A method that makes an object of bytes, as <code>Tlvforge::dll_DecodeCertificate</code>. */
    @FunctionalInterface
    public interface Decoder {
        /**
         * @param bytes the encoding
         * @param length how many of the bytes to use
         * @param out element 0 receives the handle
         * @return a status
         */
        int call(byte[] bytes, int length, long[] out);
    }

    /** A method that frees an object, as <code>Tlvforge::dll_FreeCertificate</code>. */
    @FunctionalInterface
    public interface Free {
        /**
         * @param handle the object
         * @return a status, which is 0
         */
        int call(long handle);
    }

    private static final Cleaner CLEANER = Cleaner.create();

    /** What is left to free; it must not refer to the handle. */
    private static final class Owned implements Runnable {
        private final Free free;
        private long address;

        private Owned(long address, Free free) {
            this.address = address;
            this.free = free;
        }

        @Override
        public void run() {
            if (address != 0) free.call(address);
            address = 0;
        }
    }

    private final Owned owned;
    private final Cleaner.Cleanable cleanable;

    /**
     * Takes over an object that the caller of a method owns.
     *
     * @param address its handle, 0 for none
     * @param free the method that frees it
     */
    public Handle(long address, Free free) {
        owned = new Owned(address, free);
        cleanable = CLEANER.register(this, owned);
    }

    /**
     * Makes an object.
     *
     * @param create the method that makes it
     * @param free the method that frees it
     * @return the object
     */
    public static Handle create(Output create, Free free) {
        return new Handle(lent(create), free);
    }

    /**
     * Makes an object of its encoding.
     *
     * @param bytes BER, one element at its front
     * @param decode the method that reads it
     * @param free the method that frees the object
     * @return the object
     */
    public static Handle decode(byte[] bytes, Decoder decode, Free free) {
        return create(out -> decode.call(bytes, bytes.length, out), free);
    }

    /**
     * Gets an object that is lent, or a handle of extensions or attributes. It is not freed.
     *
     * @param get a method that lends it
     * @return its handle, 0 for null
     */
    public static long lent(Output get) {
        long[] out = new long[1];
        TlvforgeException.check(get.call(out));
        return out[0];
    }

    /** @return the handle, for the methods of {@link Tlvforge} */
    public long get() {
        if (owned.address == 0) throw new IllegalStateException("the object has been freed or given away");
        return owned.address;
    }

    /**
     * Gives the object away, after a call that has adopted it.
     *
     * @return its handle
     */
    public long release() {
        long address = get();
        owned.address = 0;
        Reference.reachabilityFence(this); // or the collector might have freed what is given away
        return address;
    }

    /** Frees the object. Nothing happens the second time, or after {@link #release}. */
    @Override
    public void close() {
        cleanable.clean();
        Reference.reachabilityFence(this); // what stands in a try with resources isn't freed before its end
    }
}
