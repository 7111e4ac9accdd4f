import java.util.List;

/** How a program answers --help, -h, and a command line that it can't take. */
final class Usage {
    private Usage() {}

    /**
     * Ends the program with status 0 after --help, and with 2 after an unknown option or when the arguments don't fit;
     * returns when there is something to do. A file whose name begins with a hyphen is given as ./-name.
     */
    static void answer(String usage, List<String> arguments, boolean fits) {
        if (arguments.contains("--help") || arguments.contains("-h")) {
            System.out.println("usage: " + usage);
            System.exit(0);
        }
        boolean known = arguments.stream().noneMatch(argument -> argument.startsWith("-"));
        if (fits && known) return;
        System.err.println("usage: " + usage);
        System.exit(2);
    }
}
