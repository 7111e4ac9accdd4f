import static kestrelon.x509.tlvforge.Tlvforge.*;

import java.io.FileDescriptor;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.PrintStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.security.GeneralSecurityException;
import java.security.cert.X509Certificate;
import java.util.List;

/**
 * SignFile FILE DIRECTORY: signs a file in the forms that a signed message (CMS) can have, and verifies them.
 *
 * <p>The library makes the messages and the certificates, the JDK the keys, the signatures and the verification. What
 * is made is written to the directory:
 *
 * <pre>
 *   root.pem           the certificate to trust
 *   attached.p7m       the file with a signature;  detached.p7s: the signature alone, to lie beside the file
 *   bare.p7m, .p7s     signatures without attributes
 *   two-signers.*      the first two with a second signer, who was added later
 *   second-signer.*    the same after the first signer was removed
 * </pre>
 *
 * <p>The exit code is 0 when the JDK accepted everything.
 */
public final class SignFile {
    // The console's own character set may lack the letters of names.
    private static final PrintStream OUT =
            new PrintStream(new FileOutputStream(FileDescriptor.out), true, StandardCharsets.UTF_8);

    private final Path directory;
    private final byte[] content;
    private final X509Certificate root;
    private boolean allGood = true;

    public static void main(String[] arguments) throws Exception {
        Usage.answer("SignFile FILE DIRECTORY", List.of(arguments), arguments.length == 2);
        Path directory = Files.createDirectories(Path.of(arguments[1]));
        byte[] content = Files.readAllBytes(Path.of(arguments[0]));
        if (content.length == 0) throw new IOException("an empty file can't be attached to a signature");
        Identity authority = Identity.makeAuthority();
        SignFile program = new SignFile(directory, content, authority);
        program.signAll(authority);
        System.exit(program.allGood ? 0 : 1);
    }

    private static void write(Path path, byte[] bytes) throws IOException {
        Files.write(path, bytes);
        OUT.println("  wrote " + path + ", " + bytes.length + " bytes");
    }

    private SignFile(Path directory, byte[] content, Identity authority) throws IOException, GeneralSecurityException {
        this.directory = directory;
        this.content = content;
        OUT.println("EC P-256 with SHA-256");
        byte[] der = authority.certificate();
        root = SignedMessage.parse(der);
        byte[] label = "CERTIFICATE".getBytes(StandardCharsets.US_ASCII);
        write(directory.resolve("root.pem"), Library.bytes((b, l) -> dll_EncodePem(der, der.length, label, b, l)));
    }

    private void signAll(Identity authority) throws IOException, GeneralSecurityException {
        Identity anna = authority.makeSigner("Анна"), boris = authority.makeSigner("Борис");
        byte[] none = {};
        byte[] attached = SignedMessage.addSignature(none, anna, content, true, true);
        byte[] detached = SignedMessage.addSignature(none, anna, content, false, true);
        byte[] both = SignedMessage.addSignature(attached, boris, content, true, true);
        writeAndVerify("attached.p7m", attached, 1);
        writeAndVerify("detached.p7s", detached, 1);
        writeAndVerify("bare.p7m", SignedMessage.addSignature(none, anna, content, true, false), 1);
        writeAndVerify("bare.p7s", SignedMessage.addSignature(none, anna, content, false, false), 1);
        writeAndVerify("two-signers.p7m", both, 2);
        writeAndVerify("two-signers.p7s", SignedMessage.addSignature(detached, boris, content, false, true), 2);
        writeAndVerify("second-signer.p7m", SignedMessage.removeSigner(both, 1), 1);

        // From file to file, without a message in memory.
        Path output = directory.resolve("second-signer.p7s");
        Library.check(dll_DeleteCmsSignerInfo(1, directory.resolve("two-signers.p7s").toString(), output.toString()));
        writeAndVerify("second-signer.p7s", Files.readAllBytes(output), 1);
    }

    private void writeAndVerify(String name, byte[] der, int signers) throws IOException, GeneralSecurityException {
        write(directory.resolve(name), der);
        try (SignedMessage message = new SignedMessage(der)) {
            for (int i = 0; i < message.signerCount(); ++i) OUT.println("    " + message.describe(i));
            boolean verified = message.isGood(content, name.endsWith(".p7m"), root);
            boolean asExpected = verified && message.signerCount() == signers;
            OUT.println("  Java on the message: " + (verified ? "verified" : "refused")
                    + (asExpected ? "" : " (NOT AS IT SHOULD BE)"));
            allGood = allGood && asExpected;
        }
    }
}
