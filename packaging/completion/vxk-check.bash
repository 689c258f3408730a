# bash completion for vxk-check
_vxk_check() {
    local current=${COMP_WORDS[COMP_CWORD]} word
    COMPREPLY=()
    for ((word = 1; word < COMP_CWORD; word++)); do
        if [ "${COMP_WORDS[word]}" = -- ]; then
            # Behind "--" stand words of vxk.
            declare -F _vxk > /dev/null || ! declare -F _completion_loader > /dev/null || _completion_loader vxk
            COMP_WORDS=(vxk "${COMP_WORDS[@]:word + 1}")
            COMP_CWORD=$((COMP_CWORD - word))
            ! declare -F _vxk > /dev/null || _vxk
            return
        fi
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --plan | --capture | --junit | --html | --vxk)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -f -- "${current//\\/}")
            return
            ;;
        --handset)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(
                compgen -W "qrtr $(adb devices 2>/dev/null | awk '$2 == "device" { print $1 }')" -- "$current"
                compgen -d -- "${current//\\/}"
            )
            return
            ;;
        --table) mapfile -t COMPREPLY < <(compgen -W "json markdown --" -- "$current"); return ;;
        --timeout | --expect | --watch | --count) return ;;
    esac
    local options="--timeout --json --expect --verify --adb --handset --vxk --capture --plan --junit --html --watch --count --table --help --version --"
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
}
complete -F _vxk_check vxk-check
