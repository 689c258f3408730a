# bash completion for vxk-handset

# File names as readline wants them, also for a word that begins with a quote or has escaped blanks.
_vxk_handset_files() {
    local word=${current#[\"\']}
    compopt -o filenames 2>/dev/null
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen "$@" -- "${word//\\/}")
}

# Completes the command that begins at word $1 as if it stood alone.
_vxk_handset_command() {
    if declare -F _command_offset >/dev/null; then
        _command_offset "$1"
        return
    fi
    if [ "$COMP_CWORD" -eq "$1" ]; then
        _vxk_handset_files -c
        return
    fi
    COMP_WORDS=("${COMP_WORDS[@]:$1}")
    COMP_CWORD=$((COMP_CWORD - $1))
    if [[ $(complete -p -- "${COMP_WORDS[0]##*/}" 2>/dev/null) =~ \ -F\ ([^ ]+) ]]; then
        "${BASH_REMATCH[1]}" "${COMP_WORDS[0]}" "$current" "$previous"
    else
        _vxk_handset_files -f
    fi
}

_vxk_handset() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} program word profiles
    COMPREPLY=()
    for ((word = 1; word < COMP_CWORD; word++)); do
        if [ "${COMP_WORDS[word]}" = -- ]; then
            _vxk_handset_command $((word + 1))
            return
        fi
    done
    case $previous in
        --dir) _vxk_handset_files -d; return ;;
        --replay | --pcap | --out) _vxk_handset_files -f; return ;;
        --bus) mapfile -t COMPREPLY < <(compgen -W qrtr -- "$current"); return ;;
        --profile)
            program=$(realpath -- "$(type -P -- "$1")" 2>/dev/null)
            profiles=("${program%/*/*}"/share/vxk/profiles/*.json)
            profiles=("${profiles[@]##*/}")
            mapfile -t COMPREPLY < <(compgen -W "${profiles[*]%.json}" -X '\**' -- "$current")
            _vxk_handset_files -f -X '!*.json'
            _vxk_handset_files -d
            return
            ;;
    esac
    local words="--help"
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="run serve shell capture show log set fault event --help --version"
    else
        case ${COMP_WORDS[1]} in
            run) words="--dir --profile --bus --replay --fast --strict --help --" ;;
            capture) words="--dir --out --profile --bus --replay --fast --strict --help --" ;;
            serve | shell) words="--dir --profile --bus --replay --fast --strict --help" ;;
            show | set) words="--dir --help" ;;
            fault) words="add list clear --dir --help" ;;
            event) words="restart pull push indication --dir --help" ;;
            log) words="--dir --follow --system --json --pcap --since --command --pid --commands --help" ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _vxk_handset vxk-handset
