package kestrelon.x509.tlvforge;

import java.time.Instant;
import java.time.LocalDateTime;
import java.time.ZoneOffset;
import java.util.Arrays;

/** Times: an {@link Instant} here, the handle of a record in the methods of {@link Tlvforge}. */
public final class Time {
    private Time() {}

    /** A method that takes the handle of a time record, to fill it or to read it. */
    @FunctionalInterface
    public interface Record {
        /**
         * @param time the handle of a record
         * @return a status
         */
        int call(long time);
    }

    /**
     * Gets a time: <code>time -&gt; dll_GetX509CrlThisUpdate(crl, time)</code>.
     *
     * @param get a method that fills a LibraryTime
     * @return the time, or null for the null time
     */
    public static Instant get(Record get) {
        try (Handle time = Handle.create(Tlvforge::dll_CreateLibraryTime, Tlvforge::dll_FreeLibraryTime)) {
            TlvforgeException.check(get.call(time.get()));
            int[][] f = new int[6][1];
            TlvforgeException.check(Tlvforge.dll_GetLibraryTime(time.get(), f[0], f[1], f[2], f[3], f[4], f[5]));
            return instant(f, 0);
        }
    }

    /**
     * Gets the time of a time-stamp.
     *
     * @param get a method that fills a LibraryPreciseTime
     * @return the time, or null for the null time
     */
    public static Instant getPrecise(Record get) {
        try (Handle time = Handle.create(
                Tlvforge::dll_CreateLibraryPreciseTime, Tlvforge::dll_FreeLibraryPreciseTime)) {
            TlvforgeException.check(get.call(time.get()));
            int[][] f = new int[8][1];
            TlvforgeException.check(Tlvforge.dll_GetLibraryPreciseTime(
                    time.get(), f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7]));
            return instant(f, (f[6][0] * 1000 + f[7][0]) * 1000);
        }
    }

    /**
     * Passes a time on: <code>time -&gt; dll_SetX509CrlThisUpdate(crl, time)</code>.
     *
     * @param time the time, of which whole seconds are used, in the years 1900 to 2100
     * @param set a method that reads a LibraryTime
     */
    public static void set(Instant time, Record set) {
        try (Handle record = Handle.create(Tlvforge::dll_CreateLibraryTime, Tlvforge::dll_FreeLibraryTime)) {
            LocalDateTime utc = LocalDateTime.ofInstant(time, ZoneOffset.UTC);
            TlvforgeException.check(Tlvforge.dll_SetLibraryTime(record.get(), utc.getDayOfMonth(), utc.getMonthValue(),
                    utc.getYear(), utc.getHour(), utc.getMinute(), utc.getSecond()));
            TlvforgeException.check(set.call(record.get()));
        }
    }

    /** Day, month, year, hour, minute and second, in the order of the methods. */
    private static Instant instant(int[][] fields, int nanoseconds) {
        int[] f = Arrays.stream(fields).mapToInt(field -> field[0]).toArray();
        if (f[1] == 0) return null;
        return LocalDateTime.of(f[2], f[1], f[0], f[3], f[4], f[5], nanoseconds).toInstant(ZoneOffset.UTC);
    }
}
