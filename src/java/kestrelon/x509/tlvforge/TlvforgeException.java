package kestrelon.x509.tlvforge;

import java.util.Optional;
import java.util.function.Supplier;

/** A call that failed: its status, and as message the name and the meaning of the status. */
public final class TlvforgeException extends RuntimeException {
    private static final long serialVersionUID = 1;

    private final int status;

    /** @param status one of the numbers of {@link Tlvforge}, not 0 */
    public TlvforgeException(int status) {
        super(Tlvforge.statusText(status));
        this.status = status;
    }

    /** @return the status, one of the numbers of {@link Tlvforge} */
    public int status() {
        return status;
    }

    /**
     * Throws for every status but {@link Tlvforge#StatusOk}.
     *
     * @param status what a method of {@link Tlvforge} returned
     */
    public static void check(int status) {
        if (status != Tlvforge.StatusOk) throw new TlvforgeException(status);
    }

    /**
     * Calls that may fail because there is nothing to read.
     *
     * @param <T> what is read
     * @param read calls that throw this exception
     * @return the result, empty for {@link Tlvforge#StatusAbsent} and {@link Tlvforge#StatusNotFound}
     */
    public static <T> Optional<T> optional(Supplier<T> read) {
        try {
            return Optional.ofNullable(read.get());
        } catch (TlvforgeException failure) {
            if (failure.status != Tlvforge.StatusAbsent && failure.status != Tlvforge.StatusNotFound) throw failure;
            return Optional.empty();
        }
    }
}
