package kestrelon.x509.tlvforge;

/** Object identifiers: dotted text here, length-prefixed bytes in the methods of {@link Tlvforge}. */
public final class Oid {
    private Oid() {}

    /**
     * Converts dotted text.
     *
     * @param dotted as "2.5.4.3"
     * @return the length-prefixed bytes
     */
    public static byte[] of(String dotted) {
        return Bytes.get((oid, length) -> Tlvforge.dll_ConvertStringToOid(dotted, oid, length));
    }

    /**
     * Converts length-prefixed bytes.
     *
     * @param oid the bytes
     * @return dotted text
     */
    public static String text(byte[] oid) {
        return Bytes.text((text, length) -> Tlvforge.dll_ConvertOidToString(oid, text, length));
    }

    /**
     * Gets an object identifier.
     *
     * @param output the method
     * @return dotted text
     */
    public static String get(Bytes.Output output) {
        return text(Bytes.get(output));
    }
}
