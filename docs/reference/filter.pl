#!/usr/bin/perl
# What stands between the public headers and the tools that make references of them.
#
#   filter.pl FILE                   a header or a page of docs/ as Doxygen wants it, on standard output
#   filter.pl --parameters           what is told of each parameter: function, parameter, direction, text, tabs between,
#                                    and a line without parameter for the result
#   filter.pl --names PAGE           nothing; fails when the page has a name in backquotes that no header declares
#
# The headers tell what is particular in prose, one comment for functions that are alike. Here the comment goes to each
# function that it covers, and each parameter gets a line: from parameters.txt, and from the comment where that has a
# sentence of the form "name: text". A parameter that neither the name nor the type of a rule fits is an error.
use strict;
use warnings;
use File::Basename qw(basename dirname);

my $here = dirname(__FILE__);
my (@rules, @additions, @statusRules, %nouns, %results);
my (%functions, %statuses, %types);
my @errors;

sub slurp {
    my ($file) = @_;
    open my $in, '<', $file or die "$file: $!\n";
    local $/;
    return scalar <$in>;
}

# ---- The dictionary ----

sub glob_of {
    my ($words) = @_;
    my @parts = map { my $part = quotemeta; $part =~ s/\\\*/\\w*/g; $part } split ' ', $words;
    my $any = join '|', @parts;
    return qr/^(?:$any)$/;
}

sub read_dictionary {
    my ($file) = @_;
    my $section = '';
    my $number = 0;
    for my $line (split /\n/, slurp($file)) {
        ++$number;
        next if $line =~ /^\s*(#|$)/;
        if ($line =~ /^\[(\w+)\]$/) { $section = $1; next }
        my @columns = split /\s*\|\s*/, $line;
        s/^\s+|\s+$//g for @columns;
        if ($section eq 'types' && @columns == 2) {
            $nouns{$columns[0]} = $columns[1];
        } elsif ($section eq 'results' && @columns == 2) {
            $results{$_} = $columns[1] for split ' ', $columns[0];
        } elsif ($section eq 'statuses' && @columns == 2) {
            push @statusRules, {where => glob_of($columns[0]), numbers => [split ' ', $columns[1]], line => $number};
        } elsif ($section =~ /^(parameters|additions)$/ && @columns == ($section eq 'parameters' ? 5 : 4)) {
            my $text = pop @columns;
            my $direction = $section eq 'parameters' ? pop @columns : '';
            push @{$section eq 'parameters' ? \@rules : \@additions},
                {where => glob_of($columns[0]), name => glob_of($columns[1]), type => $columns[2],
                 direction => $direction, text => $text, line => $number, used => 0};
        } else {
            die "$file:$number: not a line of [$section]\n";
        }
    }
}

# ---- The headers ----

# The text of a comment, without its stars: paragraphs are separated by empty lines.
sub text_of {
    my ($comment) = @_;
    $comment =~ s{^/\*|\*/$}{}g;
    $comment =~ s/^[ \t]*\*(?!\*|\w)[ \t]?//gm;
    $comment =~ s/^\s+|\s+$//g;
    $comment =~ s/[ \t]+$//gm;
    return $comment;
}

sub parameters_of {
    my ($list) = @_;
    my @parameters;
    for my $entry (split /,/, $list) {
        $entry =~ s/\s+/ /g;
        $entry =~ s/^ | $//g;
        next if $entry eq 'void';
        $entry =~ /^(.*[ *])(\w+)$/ or die "not a parameter: $entry\n";
        my ($type, $name) = ($1, $2);
        $type =~ s/ $//;
        push @parameters, {name => $name, type => $type};
    }
    classify(\@parameters);
    return @parameters;
}

# The kinds that the rules know beside the types of C. A length belongs to the bytes in front of it.
sub classify {
    my ($parameters) = @_;
    my $before;
    for my $parameter (@$parameters) {
        my ($name, $type) = @$parameter{qw(name type)};
        my $belongs = $before && $before->{kind} =~ /bytes$/
            && ($name =~ /^(length|bufferLength)$/ || $name eq "$before->{name}Length");
        if ($type =~ /^const (uint8_t|char)\*$/) { $parameter->{kind} = 'in-bytes' }
        elsif ($type =~ /^(uint8_t|char)\*$/) { $parameter->{kind} = 'out-bytes' }
        elsif ($type eq 'uint32_t*' && $belongs && $before->{kind} eq 'out-bytes') { $parameter->{kind} = 'out-length' }
        elsif ($type =~ /^u?int32_t$/ && $belongs && $before->{kind} eq 'in-bytes') { $parameter->{kind} = 'in-length' }
        elsif ($type =~ /^u?int\d+_t$/) { $parameter->{kind} = 'number' }
        elsif ($type =~ /^u?int\d+_t\*$/) { $parameter->{kind} = 'number-out' }
        elsif ($type =~ /^(\w+)\*\*$|^(X509Extensions|RsaAttributes)\*$/) {
            @$parameter{qw(kind object)} = ('object-out', $1 || $2);
        } elsif ($type =~ /^const (\w+)\*$/) { @$parameter{qw(kind object)} = ('const-object', $1) }
        elsif ($type =~ /^(\w+)\*?$/) { @$parameter{qw(kind object)} = ('object', $1) }
        else { @$parameter{qw(kind object)} = ('other', 'void') }
        $parameter->{pair} = $belongs ? $before->{name} : '';
        $before->{length} = $name if $belongs;
        $before = $parameter;
    }
    # One byte that comes out, and no bytes with a length.
    for my $parameter (@$parameters) {
        $parameter->{kind} = 'number-out' if $parameter->{type} eq 'uint8_t*' && !$parameter->{length}
            && $parameter->{name} ne 'digest';
    }
}

my $kDeclaration = qr/^TLVFORGE_(STATUS|API [^\n(;]*?[ *])\s*(\w+)\(([^;]*)\);[ \t]*\n/m;
my $kComment = qr{^/\*.*?\*/[ \t]*\n}ms;

# Cuts a header into its parts: [kind, text, ...] in their order.
sub parts_of {
    my ($text) = @_;
    my @parts;
    while (length $text) {
        if ($text =~ s/\A($kComment)//) { push @parts, ['comment', $1] }
        elsif ($text =~ s/\A$kDeclaration//) { push @parts, ['function', $2, $1, $3] }
        elsif ($text =~ s{\ATLVFORGE_NUMBER\((\w+), (\d+)\)\s*/\* (.*?) \*/\n}{}) {
            push @parts, ['number', $1, $2, $3];
        }
        elsif ($text =~ s/\A(enum \{[^\n]*\};\n)//) { push @parts, ['block', $1] }
        elsif ($text =~ s/\A((?:typedef )?(?:enum|struct)(?: \w+)? \{\n.*?^\}[^;]*;[^\n]*\n)//ms) {
            push @parts, ['block', $1];
        } elsif ($text =~ s/\A(typedef [^\n]*;[^\n]*\n)//) { push @parts, ['type', $1] }
        elsif ($text =~ s/\A(#define[^\n]*(?:\\\n[^\n]*)*\n)//) { push @parts, ['macro', $1] }
        elsif ($text =~ s/\A\n//) { push @parts, ['blank'] }
        else { $text =~ s/\A[^\n]*\n?// }
    }
    return @parts;
}

sub read_header {
    my ($file) = @_;
    my ($comment, $covered) = ('', []);
    for my $part (parts_of(slurp($file))) {
        if ($part->[0] eq 'comment') {
            $comment = text_of($part->[1]);
            $covered = [];
        } elsif ($part->[0] eq 'type' && ($comment ne '' || $part->[1] =~ m{/\*}) && $part->[1] =~ /(\w+);/) {
            $types{$1} = basename($file);
        } elsif ($part->[0] eq 'number') {
            $statuses{$part->[2]} = {name => $part->[1], text => $part->[3]};
        } elsif ($part->[0] eq 'function') {
            my ($name, $macro, $list) = @$part[1 .. 3];
            my $result = $macro eq 'STATUS' ? 'Status' : $macro =~ s/^API //r =~ s/\s+$//r;
            my $function = {name => $name, header => basename($file), result => $result, comment => $comment,
                            parameters => [parameters_of($list)]};
            push @$covered, $function;
            $function->{family} = $covered;
            $functions{$name} = $function;
        } elsif ($part->[0] ne 'blank' || @$covered) {
            # An empty line ends what a comment covers.
            ($comment, $covered) = ('', []);
        }
    }
}

# ---- What is told ----

# The sentences "name: text" and "name, name: text" of a comment that are about a parameter.
sub told_of {
    my ($function, $name) = @_;
    my $text = $function->{comment} =~ s/\s+/ /gr;
    my @told;
    while ($text =~ /(?:^|(?<=[.;] )|(?<=\d\) ))(\w+(?:, \w+)*(?: and \w+)?):\s+(.*?\.)(?=\s|$)/g) {
        my ($names, $sentence) = ($1, $2);
        pos($text) = $-[2];
        push @told, $sentence if grep { $_ eq $name } split /, | and /, $names;
    }
    return @told;
}

sub fill_in {
    my ($text, $function, $parameter) = @_;
    my $object = $parameter->{object} || '';
    my $noun = $nouns{$object} || '';
    if ($text =~ /\{noun\}/ && !$noun) { push @errors, "$function->{name}: no word for the type $object" }
    my $free = exists $functions{"Free$object"} ? "Free$object" : '';
    if ($text =~ /\{free\}/ && !$free) { push @errors, "$function->{name}: nothing frees $object" }
    $text =~ s/\{noun\}/$noun/g;
    $text =~ s/\{free\}/$free/g;
    $text =~ s/\{pair\}/$parameter->{pair}/g;
    return $text;
}

sub matches {
    my ($rule, $function, $parameter) = @_;
    return ($function->{name} =~ $rule->{where} || $function->{header} =~ $rule->{where})
        && $parameter->{name} =~ $rule->{name}
        && grep { $_ eq '*' || $_ eq $parameter->{kind} || $_ eq $parameter->{type} } split / or /, $rule->{type};
}

# Direction and text, or nothing when no rule fits.
sub describe {
    my ($function, $parameter) = @_;
    my ($rule) = grep { matches($_, $function, $parameter) } @rules;
    if (!$rule) {
        push @errors, "$function->{header}: $function->{name}: no rule of parameters.txt fits "
            . "$parameter->{type} $parameter->{name}, a parameter of the kind $parameter->{kind}";
        return;
    }
    $rule->{used} = 1;
    my $constant = $parameter->{type} =~ /^const [^*]*\*$|const\*$|[^*]$/ && $parameter->{kind} ne 'object-out';
    my $wrong = $constant ? $rule->{direction} !~ /^in=?$/ : $parameter->{kind} =~ /out/ && $rule->{direction} !~ /out/;
    push @errors, "parameters.txt:$rule->{line}: the direction of $parameter->{name} in $function->{name}" if $wrong;
    my @texts = (fill_in($rule->{text}, $function, $parameter));
    for my $addition (grep { matches($_, $function, $parameter) } @additions) {
        $addition->{used} = 1;
        push @texts, fill_in($addition->{text}, $function, $parameter);
    }
    # A rule for functions by their names has said it all; one for any function or for a header hasn't.
    if ('AnyFunction' =~ $rule->{where} || $function->{header} =~ $rule->{where}) {
        for my $told ($rule->{direction} =~ /=$/ ? () : told_of($function, $parameter->{name})) {
            my $bare = $told =~ s/^out(?: only)?[,;:]? //r =~ s/\.$//r;
            push @texts, $bare if index(lc join(' ', @texts), lc $bare) < 0;
        }
    }
    return ($rule->{direction} =~ s/=$//r, join('. ', map { ucfirst s/\.$//r } @texts) . '.');
}

# The part of a comment that is about a function: what stands behind "Getting:" isn't about one that sets.
sub relevant {
    my ($function) = @_;
    my %words = (Get => ['Getting', 'Setting'], Set => ['Setting', 'Getting'],
                 Decode => ['Decoding', 'Encoding'], Encode => ['Encoding', 'Decoding']);
    my $text = $function->{comment} =~ s/\s+/ /gr;
    if ($function->{name} =~ /^(Get|Set|Decode|Encode)/) {
        my ($own, $other) = @{$words{$1}};
        $text =~ s/\b$other(?::| [a-z]).*?(?=\b$own(?::| [a-z])|$)//g;
    }
    # What a later call gives.
    $text =~ s/[^.;:]*\b(?:encode[ds]?|be read)\b[^.;:(]*\(\d+\)//g if $function->{name} !~ /^Encode|ToBeSigned/;
    return $text;
}

sub statuses_of {
    my ($function, $depth) = @_;
    my (%found, @never);
    for my $rule (grep { $function->{name} =~ $_->{where} || $function->{header} =~ $_->{where} } @statusRules) {
        my ($first, @rest) = @{$rule->{numbers}};
        return {map { $_ => 1 } $first, @rest} if $first eq 'only';
        for my $number ($first, @rest) {
            if ($number =~ /^-(\d+)$/) { push @never, $1 }
            else { $found{$number} = 1 }
        }
    }
    my @parameters = @{$function->{parameters}};
    $found{0} = 1;
    $found{32} = 1 if grep { $_->{type} =~ /\*|^X509Extensions$|^RsaAttributes$/ } @parameters;
    $found{49} = 1 if grep { $_->{kind} eq 'out-length' } @parameters;
    my $text = relevant($function);
    while ($text =~ /(?<!not )(?<!never )(?<!says )(?<![\w.,\/])(3\d\d|49)(?![.,]?\d)(?!\w)/gi) {
        $found{$1} = 1 if $statuses{$1};
    }
    if ($depth < 3 && $text =~ /(?:[Ss]tatus(?:es)?|Arguments)[^.]*? (?:as|of) (\w+)/ && $functions{$1}
        && $1 ne $function->{name}) {
        %found = (%found, %{statuses_of($functions{$1}, $depth + 1)});
    }
    delete @found{@never};
    return \%found;
}

# ---- As Doxygen wants it ----

sub escape {
    my ($text) = @_;
    $text =~ s/([\\@<>&%#])/\\$1/g;
    # Stars that make no emphasis are pointers.
    $text =~ s/(?<!\*)\*(?!\*)(?!(?:owns|owned|lends|lent|adopts)\*)(?=\w)/\\*/g;
    $text =~ s/\b(\w+)\b/exists $functions{$1} ? "#$1" : $1/ge;
    $text =~ s/see output buffers/see \@ref conventions-output-buffers "output buffers"/;
    return $text;
}

# Prose in paragraphs: a line that begins a new thought begins a paragraph.
sub prose {
    my ($text) = @_;
    my @lines;
    for my $line (split /\n/, $text) {
        push @lines, '' if $line =~ /^(?:\w+(?:, \w+)*:\s|Status(?:es)? |Getting:|Setting:|Decoding:|Encoding:)/;
        # A number with a full stop at the beginning of a line is no list.
        push @lines, escape($line =~ s/^\s+//r) =~ s/^(\d+)\. /$1\\. /r;
    }
    return @lines;
}

sub block {
    my (@lines) = @_;
    return "/**\n" . join('', map { $_ eq '' ? " *\n" : " * $_\n" } @lines) . " */\n";
}

sub function_block {
    my ($function) = @_;
    my ($name, @family) = ($function->{name}, map { $_->{name} } @{$function->{family}});
    push @errors, "$function->{header}: no comment above $name" if $function->{comment} eq '';
    my @lines;
    push @lines, "Told together with #$family[0]:", '' if $function->{comment} !~ /\b$name\b/ && $family[0] ne $name;
    push @lines, prose($function->{comment}), '';
    for my $parameter (@{$function->{parameters}}) {
        my ($direction, $text) = describe($function, $parameter) or next;
        push @lines, "\@param[$direction] $parameter->{name} " . escape($text);
    }
    if ($function->{result} eq 'Status' && !$results{$name}) {
        my $found = statuses_of($function, 0);
        push @lines, $found->{only} ? '@return a #Status, one of these:'
            : '@return a #Status; beside those of the functions that it builds on:';
        for my $number (sort { $a <=> $b } grep { /\d/ } keys %$found) {
            my $status = $statuses{$number} or push(@errors, "$name: $number is no status"), next;
            # Without a buffer it is a number that doesn't fit.
            my $text = $number == 49 && !grep({ $_->{kind} eq 'out-length' } @{$function->{parameters}})
                ? 'the value is too large, as told above' : $status->{text};
            push @lines, "\@retval $status->{name} $number: " . escape($text);
        }
    } elsif ($function->{result} ne 'void') {
        push @errors, "$function->{header}: parameters.txt doesn't tell the result of $name" if !$results{$name};
        push @lines, '@return ' . escape($results{$name} || '');
    }
    push @lines, '@see ' . join ', ', map { "#$_" } grep { $_ ne $name } @family if @family > 1 && @family < 40;
    my $list = join ', ', map { "$_->{type} $_->{name}" } @{$function->{parameters}};
    return block(@lines) . "$function->{result} $name($list);\n\n";
}

sub slug {
    my ($text) = @_;
    return lc($text) =~ s/[^a-z0-9]+/_/gr =~ s/^_|_$//gr;
}

# The first words of a text as a title: what stands in front of a full stop, or of a colon or comma when that is long.
sub title_of {
    my ($text, $limit) = @_;
    my $title = $text =~ s/\s+/ /gr;
    $title =~ s/ \([^)]*\)//g;
    $title =~ s/\.(?: .*)?$//;
    $title =~ s/: .*// if length $title > $limit;
    $title =~ s/, .*// if length $title > $limit;
    return $title;
}

# The group that begins at a part: comments that stand alone go on top of it.
sub group_block {
    my ($group, $title, $text, @parts) = @_;
    my @lines = prose($text);
    while (@parts) {
        my ($kind, $comment) = @{shift @parts};
        next if $kind ne 'comment';
        last if text_of($comment) =~ /^---/;
        my ($next) = grep { $_->[0] ne 'blank' } @parts;
        push @lines, '', prose(text_of($comment)) if !$next || $next->[0] eq 'comment';
    }
    return "/** \@defgroup $group " . ucfirst($title) . "\n" . join('', map { " * $_\n" } @lines) . " * \@{ */\n\n";
}

sub header_for_doxygen {
    my ($file) = @_;
    my $base = basename($file, '.h');
    my @parts = parts_of(slurp($file));
    my $about = text_of((shift @parts)->[1]);
    my $out = "/** \@file\n * " . escape($about =~ s/\n\n.*//sr =~ s/\s+/ /gr) . " */\n";
    $out .= group_block($base, title_of($about, 0), $about, @parts);
    my ($open, $comment) = (0, '');
    for my $i (0 .. $#parts) {
        my ($kind, @part) = @{$parts[$i]};
        if ($kind eq 'comment') {
            $comment = text_of($part[0]);
            if ($comment =~ /^-{3,4} (.*?) -{3,4}$/s) {
                my $text = $1;
                my $title = title_of($text, 55);
                $text =~ s/^\Q$title\E(?:[.:,] |$)//;
                $out .= "/** \@} */\n" if $open++;
                $out .= group_block($base . '_' . slug($title), $title, ucfirst $text, @parts[$i + 1 .. $#parts]);
                $comment = '';
            }
        } elsif ($kind eq 'function') {
            $out .= function_block($functions{$part[0]});
        } elsif ($kind eq 'type' || $kind eq 'block') {
            my $text = $part[0];
            next if $kind eq 'type' && $text =~ /(\w+);/ && ($types{$1} || $base) ne "$base.h";
            # A record that is named before its fields: the comment is for the record.
            next if $kind eq 'type' && $parts[$i + 1][0] eq 'block' && $text =~ /^typedef struct (\w+)/
                && $parts[$i + 1][1] =~ /^struct $1 /;
            $text =~ s/^struct (\w+) (.*)\};$/typedef struct $1 $2} $1;/s if $kind eq 'block';
            $text =~ s{/\* (.*?) \*/}{'/**< ' . escape($1) . ' */'}ge;
            $out .= block(prose($comment)) if $comment ne '' && ($kind eq 'block' || $text !~ m{/\*\*<});
            $out .= "$text\n";
        } elsif ($kind eq 'number') {
            # Enumerators, as they are in C; those that follow each other are one enumeration.
            $out .= "/** Numbers of statuses. */\nenum {\n" if $parts[$i - 1][0] ne 'number';
            $out .= "    $part[0] = $part[1], /**< " . escape($part[2]) . " */\n";
            $out .= "};\n\n" if $parts[$i + 1][0] ne 'number';
        }
    }
    $out .= "/** \@} */\n" if $open;
    return $out . "/** \@} */\n";
}

# The anchor that a heading of a page has elsewhere.
sub anchor_of {
    my ($heading, $before) = @_;
    my $anchor = lc($heading) =~ s/[^\w\- ]//gr =~ s/ /-/gr;
    my $times = $before->{$anchor}++;
    return $times ? "$anchor-$times" : $anchor;
}

# A link within the pages and to the headers; of one to other files only the text is left.
sub link_of {
    my ($page, $text, $target) = @_;
    my $plain = $text =~ s/`//gr;
    if ($target =~ /^(?:([\w-]+)\.md)?#(.+)$/) { return "[$plain](\@ref " . ($1 || $page) . "-$2)" }
    if ($target =~ m{include/tlvforge/(\w+\.h)$}) { return "[$plain](\@ref $1)" }
    if ($target =~ /^\w+:/) { return "[$text]($target)" }
    return $target =~ m{^(?:\.\./)?([\w-]+\.md)$} && -e "$here/../$1" ? "[$plain]($target)" : $text;
}

# Outside of programs, names in backquotes become links, and headings anchors under the name of their page.
sub page_for_doxygen {
    my ($page, $text) = @_;
    my %anchors;
    my @parts = split /^(```.*?^```)$/ms, $text;
    for my $part (grep { !/^```/ } @parts) {
        $part =~ s/\[([^\]]*)\]\(([^)\s]+)\)/link_of($page, $1, $2)/ge;
        $part =~ s/^(##+ )(.*)$/"$1$2 {#$page-" . anchor_of($2, \%anchors) . "}"/gme;
        # A number with a full stop at the beginning of a line is no list, unless it is a small one.
        $part =~ s/^(\d\d+)\. /$1\\. /gm;
        $part =~ s/`(\w+)`/exists $functions{$1} ? "#$1" : "`$1`"/ge;
    }
    return join '', @parts;
}

read_dictionary("$here/parameters.txt");
my $include = "$here/../../include/tlvforge";
read_header($_) for sort glob "$include/*.h";

my ($first, $page) = @ARGV;
die "filter.pl FILE | --parameters | --names PAGE\n" if !defined $first;
my $output = '';
if ($first eq '--parameters') {
    # With all that could be wrong with a header.
    header_for_doxygen($_) for sort glob "$include/*.h";
    for my $function (sort { $a->{name} cmp $b->{name} } values %functions) {
        for my $parameter (@{$function->{parameters}}) {
            my ($direction, $text) = describe($function, $parameter) or next;
            $output .= "$function->{name}\t$parameter->{name}\t$direction\t$text\n";
        }
        my $result = $results{$function->{name}} || ($function->{result} eq 'Status' ? 'a status' : 'nothing');
        $output .= "$function->{name}\t\tresult\t$result\n";
    }
    for my $rule (@statusRules) {
        $rule->{used} = grep { $_->{name} =~ $rule->{where} || $_->{header} =~ $rule->{where} } values %functions;
    }
    for my $rule (grep { !$_->{used} } @rules, @additions, @statusRules) {
        push @errors, "parameters.txt:$rule->{line}: this rule is never used";
    }
} elsif ($first eq '--names') {
    my @names = slurp($page) =~ /`(\w{4,})`/g;
    push @errors, map { "$page: no header declares $_" } grep { !$functions{$_} && !$types{$_} } @names;
    push @errors, "$page: no names in backquotes" if !@names;
} elsif ($first =~ /\.h$/) {
    $output = header_for_doxygen($first);
} else {
    $output = page_for_doxygen(basename($first, '.md'), slurp($first));
}
print $output;
my %seen;
print STDERR "error: $_\n" for grep { !$seen{$_}++ } @errors;
exit(@errors ? 1 : 0);
