# bash completion for vxk-handset
_vxk_handset() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    case $previous in
        --dir) mapfile -t COMPREPLY < <(compgen -d -- "$current"); return ;;
        --profile) mapfile -t COMPREPLY < <(compgen -f -X '!*.json' -- "$current"; compgen -d -- "$current"); return ;;
    esac
    local words="--help"
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="run serve shell show log --help"
    else
        case ${COMP_WORDS[1]} in
            run) words="--dir --profile --help --" ;;
            serve | shell) words="--dir --profile --help" ;;
            show) words="--dir --help" ;;
            log) words="--dir --follow --system --help" ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -F _vxk_handset vxk-handset
