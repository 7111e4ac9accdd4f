package kestrelon.x509.tlvforge;

import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;

/** Finds and loads the native library, once. */
final class NativeLibrary {
    private static final String NAME = "tlvforge_64";
    private static final String PATH_PROPERTY = "kestrelon.x509.tlvforge.library";

    private NativeLibrary() {}

    /** Takes the file that the property names, else what lies on java.library.path, else the copy in the jar. */
    static void load() {
        String path = System.getProperty(PATH_PROPERTY);
        if (path != null) {
            System.load(Path.of(path).toAbsolutePath().toString());
            return;
        }
        try {
            System.loadLibrary(NAME);
        } catch (UnsatisfiedLinkError notOnPath) {
            loadFromJar(notOnPath);
        }
    }

    /** What is loaded stays loaded. Windows keeps the file of a library that is in use. */
    private static void delete(Path extracted) {
        try {
            Files.deleteIfExists(extracted);
        } catch (IOException inUse) {
            extracted.toFile().deleteOnExit();
        }
    }

    private static void loadFromJar(UnsatisfiedLinkError notOnPath) {
        String file = System.mapLibraryName(NAME);
        try (InputStream copy = NativeLibrary.class.getResourceAsStream(file)) {
            if (copy == null) throw notOnPath;
            Path extracted = Files.createTempFile("tlvforge", file);
            try {
                Files.copy(copy, extracted, StandardCopyOption.REPLACE_EXISTING);
                System.load(extracted.toString());
            } finally {
                delete(extracted);
            }
        } catch (IOException | UnsatisfiedLinkError failure) {
            if (failure == notOnPath) throw notOnPath;
            UnsatisfiedLinkError error = new UnsatisfiedLinkError("Can't load " + file + " from the jar: "
                    + failure.getMessage() + ". The property " + PATH_PROPERTY + " can name the file.");
            error.initCause(failure);
            throw error;
        }
    }
}
