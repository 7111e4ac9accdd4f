# bash completion of tlvforge-inspect
_tlvforge_inspect() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    case $before in
        --kind) mapfile -t COMPREPLY < <(compgen -W "$("$1" --help | sed -n 's/^Kinds://p')" -- "$word") ;;
        --limit) ;;
        --pem) mapfile -t COMPREPLY < <(compgen -W "CERTIFICATE CMS" -- "$word") ;;
        *)
            if [[ $word == --color=* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "always never auto" -- "${word#*=}")
            elif [[ $word == -* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$("$1" --help | sed -n 's/^  .*\(--[a-z]*\).*/\1/p')" -- "$word")
            else
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
            fi
            ;;
    esac
}
complete -o filenames -F _tlvforge_inspect tlvforge-inspect
