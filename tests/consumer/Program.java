import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.util.Arrays;
import java.util.HexFormat;

class Program {
    public static void main(String[] arguments) {
        byte[] oid = new byte[32];
        int[] length = {oid.length};
        if (dll_ConvertStringToOid("1.2.643.2.2.31.1", oid, length) != 0) System.exit(1);
        System.out.print(HexFormat.of().withUpperCase().formatHex(Arrays.copyOf(oid, length[0])));
    }
}
