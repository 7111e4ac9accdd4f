import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.nio.file.Files;
import java.nio.file.Path;

/** What a call through the bridge costs: of one array, and of none, which is what the virtual machine takes by itself. */
public final class CallCost {
    private static final int CALLS = 1_000_000;
    private static final int ROUNDS = 15;

    interface Call {
        int call();
    }

    /** Argument: a certificate. */
    public static void main(String[] arguments) throws Exception {
        byte[] der = Files.readAllBytes(Path.of(arguments[0]));
        long[] handle = new long[1];
        if (dll_DecodeCertificate(der, der.length, handle) != StatusOk) throw new AssertionError("no certificate");
        long certificate = handle[0];
        int[] version = new int[1];
        double bare = nanoseconds(() -> dll_IsLibraryTimeNull(0));
        double array = nanoseconds(() -> dll_GetCertificateVersion(certificate, version));
        System.out.printf("dll_IsLibraryTimeNull %.1f ns, dll_GetCertificateVersion %.1f ns%n", bare, array);
    }

    /** The best of some rounds: what else the machine does only adds to it. */
    private static double nanoseconds(Call call) {
        long best = Long.MAX_VALUE;
        int sum = 0;
        for (int round = 0; round < ROUNDS; ++round) {
            long start = System.nanoTime();
            for (int i = 0; i < CALLS; ++i) sum += call.call();
            best = Math.min(best, System.nanoTime() - start);
        }
        if (sum == 42) System.out.println("so that no call is left out");
        return best / (double) CALLS;
    }
}
