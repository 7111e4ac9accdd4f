import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.regex.MatchResult;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Writes the Java class that declares the native methods: their parameters come from the rows of the table, and names
 * and comments from the public headers. A list of the natives with the letters of their parameters goes beside it.
 */
public final class GenerateTlvforge {
    /** A function as its header declares it. */
    record Function(String header, String result, List<String> parameters, List<String> comment) {}

    /** What is told of a parameter, or of the result, where the parameter has no name. */
    record Told(String direction, String text) {}

    /** A row of the table. */
    record Native(String name, List<String> kinds) {
        String letters() {
            StringBuilder letters = new StringBuilder();
            for (String kind : kinds) letters.append(lettersOf(kind));
            return letters.toString();
        }
    }

    private static final Pattern ROW = Pattern.compile("^NATIVE(_AS)?\\((.*)\\)$", Pattern.MULTILINE);
    private static final Pattern HAND_WRITTEN = Pattern.compile("_dll_1(\\w+)\\(JNIEnv\\* env, jclass,\\s+jobject");
    private static final Pattern COMMENT_OR_DECLARATION = Pattern.compile(
            "^/\\*(?<comment>.*?)\\*/$"
                    + "|^TLVFORGE_(?<result>STATUS|API [^(;]*?[ *])\\s*(?<name>\\w+)\\((?<list>[^;]*)\\);",
            Pattern.MULTILINE | Pattern.DOTALL);
    private static final Pattern NUMBER =
            Pattern.compile("^TLVFORGE_NUMBER\\((\\w+), (\\d+)\\)\\s*/\\* (.*) \\*/$", Pattern.MULTILINE);
    private static final Pattern ENUM = Pattern.compile(
            "^/\\*((?:(?!\\*/).)*)\\*/\nenum \\{(.*?)\\};", Pattern.DOTALL | Pattern.MULTILINE);
    private static final Pattern ENUMERATOR = Pattern.compile("(\\w+) = (\\w+),?(?: */\\* (.*) \\*/)?");

    /** Lines of a comment that begin a new thought: a parameter, a status, a result. */
    private static final Pattern NEW_LINE =
            Pattern.compile("^(\\w+(, \\w+)*:|Status(es)? |Result|Getting:|Setting:).*", Pattern.DOTALL);

    /** What the kinds that depart from their letters mean for the caller. */
    private static final Map<String, String> NOTES = Map.of(
            "l_object", "%s: the handle is read from element 0, which stays as it is.",
            "l_inout", "%s: the handle in element 0 is read and replaced.",
            "r_node", "%s: the address of the record, in the first eight bytes in the byte order of the machine.",
            "o_node", "%s: the address of the record, in the first eight bytes in the byte order of the machine.",
            "r_nodecell", "%s: an address in the first eight bytes, in the byte order of the machine, is replaced.",
            "o_nodecell", "%s: an address in the first eight bytes, in the byte order of the machine, is replaced.",
            "o_oid", "%s: is read; the number comes back in the int[] behind it.",
            "oi_element", "%s: the only certificate, and certificateCount is 1, or 0 for none.");

    private static final String CLASS_COMMENT = """
            /**
             * The functions of tlvforge, each as a static method that carries its name behind <code>dll_</code>.
             *
             * <p>What is told of a function holds for its method. These are the forms that its arguments take here:
             *
             * <ul>
             * <li>Objects are handles, a <code>long</code> each, and 0 is null. Whatever a function says is owned has
             *     to be freed with the function that it names. A stale handle isn't detected.
             * <li>A handle or a number that comes out is stored in element 0 of a <code>long[]</code> or
             *     <code>int[]</code>.
             * <li>Bytes go in as a <code>byte[]</code> with the number of them to use, or alone where they carry their
             *     length: a length-prefixed OID, text up to a zero byte.
             * <li>Bytes come out in a <code>byte[]</code> with an <code>int[]</code> behind it for the length. The
             *     capacity is the length of the array, whatever the <code>int[]</code> held. With null for the array
             *     only the length is stored, and so it is with {@link #StatusBufferTooSmall}.
             * <li>Text goes in as a <code>String</code> where it names a file, and reaches the file system as CP1251.
             * </ul>
             *
             * <p>The result is a status unless the function says otherwise. No method throws. An array that is too
             * small for what the function would read from it or store in it, or null where an element has to be stored,
             * gives {@link #StatusBufferTooSmall} too, and nothing is called then.
             *
             * <p>The native library is the file that the system property
             * <code>kestrelon.x509.tlvforge.library</code> names, else the one on <code>java.library.path</code>, else
             * the copy in the jar.
             */
            """;

    public static void main(String[] arguments) throws IOException {
        if (arguments.length < 4) throw new IllegalArgumentException("CLASS LIST TABLE HEADER... [PARAMETERS.tsv]");
        Map<String, Told> told = new HashMap<>();
        Map<String, Function> functions = new LinkedHashMap<>();
        StringBuilder numbers = new StringBuilder();
        for (String header : Arrays.asList(arguments).subList(3, arguments.length)) {
            String text = Files.readString(Path.of(header));
            if (header.endsWith(".tsv")) {
                text.lines().map(line -> line.split("\t"))
                        .forEach(line -> told.put(line[0] + " " + line[1], new Told(line[2], line[3])));
                continue;
            }
            readFunctions(Path.of(header).getFileName().toString(), text, functions);
            readNumbers(text, numbers);
        }
        Map<String, Native> natives = readTable(Files.readString(Path.of(arguments[2])));

        StringBuilder source = new StringBuilder("package kestrelon.x509.tlvforge;\n\n").append(CLASS_COMMENT);
        source.append("public final class Tlvforge {\n    static {\n        NativeLibrary.load();\n    }\n\n");
        source.append("    private Tlvforge() {}\n\n").append(numbers);
        for (Map.Entry<String, Function> entry : functions.entrySet()) {
            Native row = natives.get(entry.getKey());
            if (row == null) throw new IllegalStateException(entry.getKey() + " has no row in the table of natives");
            source.append(declare(row, entry.getValue(), told));
        }
        if (natives.size() != functions.size()) {
            natives.keySet().removeAll(functions.keySet());
            throw new IllegalStateException("no header declares " + natives.keySet());
        }
        write(Path.of(arguments[0]), source.append("}\n").toString());

        StringBuilder list = new StringBuilder("name\tshape\n");
        for (Native row : natives.values()) list.append(row.name()).append('\t').append(row.letters()).append('\n');
        write(Path.of(arguments[1]), list.toString());
    }

    private static void write(Path file, String text) throws IOException {
        Files.createDirectories(file.getParent());
        Files.writeString(file, text);
    }

    private static Map<String, Native> readTable(String text) {
        Map<String, Native> natives = new TreeMap<>();
        Matcher row = ROW.matcher(text);
        while (row.find()) {
            List<String> columns = List.of(row.group(2).split(", "));
            boolean named = row.group(1) != null;
            String name = columns.get(0).replace("_1", "_");
            Native previous = natives.put(name, new Native(name, columns.subList(named ? 2 : 1, columns.size())));
            if (previous != null) throw new IllegalStateException(name + " has two rows");
        }
        Matcher handWritten = HAND_WRITTEN.matcher(text);
        while (handWritten.find()) natives.put(handWritten.group(1), new Native(handWritten.group(1), List.of("h")));
        return natives;
    }

    /** A comment belongs to all declarations up to the next one. */
    private static void readFunctions(String header, String text, Map<String, Function> functions) {
        List<String> comment = List.of();
        Matcher matcher = COMMENT_OR_DECLARATION.matcher(text);
        while (matcher.find()) {
            if (matcher.group("comment") != null) {
                comment = linesOf(matcher.group("comment"));
                continue;
            }
            String result = matcher.group("result").replace("API ", "").strip();
            List<String> names = new ArrayList<>();
            for (String parameter : matcher.group("list").split(",")) {
                names.add(parameter.strip().replaceAll(".*[ *]", ""));
            }
            functions.put(matcher.group("name"), new Function(header, result, names, comment));
        }
    }

    private static List<String> linesOf(String comment) {
        List<String> lines = new ArrayList<>();
        for (String line : comment.split("\n")) {
            String text = line.strip().replaceFirst("^\\*\\s*", "");
            if (!text.isEmpty()) lines.add(text);
        }
        return lines;
    }

    private static void readNumbers(String text, StringBuilder numbers) {
        NUMBER.matcher(text).results().forEach(number -> declareNumber(number, "", numbers));
        ENUM.matcher(text).results()
                .forEach(block -> ENUMERATOR.matcher(block.group(2)).results()
                        .forEach(number -> declareNumber(number, String.join(" ", linesOf(block.group(1))), numbers)));
    }

    /** Name, number and comment, behind the one of all numbers together. */
    private static void declareNumber(MatchResult number, String common, StringBuilder numbers) {
        String comment = common.isEmpty() ? number.group(3) + "."
                : number.group(3) == null ? common : common.replaceFirst("\\.$", ": ") + number.group(3) + ".";
        numbers.append("    /** ").append(html(comment)).append(" */\n");
        numbers.append("    public static final int ").append(number.group(1)).append(" = ").append(number.group(2))
                .append(";\n\n");
    }

    private static String lettersOf(String kind) {
        return kind.replaceFirst("_.*", "");
    }

    private static List<String> typesOf(String kind) {
        List<String> types = new ArrayList<>();
        for (char letter : lettersOf(kind).toCharArray()) {
            switch (letter) {
                case 'h' -> types.add("long");
                case 'i' -> types.add("int");
                case 'b' -> types.addAll(List.of("byte[]", "int"));
                case 'r' -> types.add("byte[]");
                case 'o' -> types.addAll(List.of("byte[]", "int[]"));
                case 'n' -> types.add("int[]");
                case 'l' -> types.add("long[]");
                case 's' -> types.add("String");
                default -> throw new IllegalStateException("unknown kind " + kind);
            }
        }
        return types;
    }

    private static String declare(Native row, Function function, Map<String, Told> told) {
        boolean version = row.name().equals("GetVersionInfo");
        List<String> parameters = new ArrayList<>();
        List<String> notes = new ArrayList<>();
        for (String kind : row.kinds()) {
            String name = function.parameters().get(parameters.size());
            if (NOTES.containsKey(kind)) notes.add(NOTES.get(kind).formatted(name));
            for (String type : typesOf(kind)) {
                parameters.add((version ? "StringBuffer" : type) + " " + function.parameters().get(parameters.size()));
            }
        }
        if (version) notes.add("text: its content is replaced; null is left alone, and gives 0.");
        else if (parameters.size() < function.parameters().size()) notes.add("the bytes are checked, and that is all.");

        StringBuilder text = new StringBuilder("    /**\n");
        for (String line : function.comment()) text.append(commentLine(line));
        for (String note : notes) text.append("     * <br>In Java: ").append(note).append('\n');
        for (String parameter : parameters) {
            String name = parameter.replaceFirst(".* ", "");
            Told line = version ? null : told.get(row.name() + " " + name);
            if (line != null) text.append("     * @param ").append(name).append(' ').append(inJava(parameter, line));
        }
        if (version) text.append("     * @param text a buffer, or null\n");
        Told result = told.get(row.name() + " ");
        if (result != null) {
            String returned = function.result().equals("void") ? "always 0" : result.text();
            text.append("     * @return ").append(code(html(returned))).append('\n');
        }
        String head = "    public static native " + (function.result().endsWith("*") ? "long" : "int");
        return text + "     */\n" + wrap(head + " dll_" + row.name() + "(", parameters) + "\n\n";
    }

    /** The text of a C parameter in the forms of Java: what comes out stands in element 0, an array knows its room. */
    private static String inJava(String parameter, Told told) {
        String text = told.text().replaceFirst("^On entry the room in .*", "Receives the length.");
        if (parameter.matches("(int|long)\\[].*")) text = text.replaceFirst("^Receives", "Element 0 receives");
        if (parameter.startsWith("String")) text = text.replace(", zero-terminated", "");
        return code(html(text)) + "\n";
    }

    private static String wrap(String head, List<String> parameters) {
        StringBuilder lines = new StringBuilder();
        String line = head;
        for (int i = 0; i < parameters.size(); ++i) {
            String next = parameters.get(i) + (i + 1 < parameters.size() ? "," : ");");
            boolean first = line.endsWith("(") || line.isBlank();
            if (line.length() + next.length() >= 120) {
                lines.append(line).append('\n');
                line = " ".repeat(12);
                first = true;
            }
            line += (first ? "" : " ") + next;
        }
        return lines + line;
    }

    private static String commentLine(String line) {
        return "     * " + (NEW_LINE.matcher(line).matches() ? "<br>" : "") + html(line) + "\n";
    }

    private static String code(String html) {
        return html.replaceAll("`(\\w+)`", "<code>$1</code>");
    }

    private static String html(String text) {
        return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;").replace("@", "&#64;")
                .replace("{", "&#123;").replaceAll("\\*(owns|lends|adopts)\\*", "<em>$1</em>");
    }
}
