# bash completion for vxk
_vxk() {
    local words=()
    case $COMP_CWORD in
        1) words=(1 2 3 4 5 6 7 8 9 10 11) ;;
        2)
            case ${COMP_WORDS[1]} in
                3) words=(0 1 2 3 4 5) ;;
                4) words=(1 2 3 4 5 6) ;;
                5) words=(0 1 2 3 4 5 6 10) ;;
                6) words=(0 1 2 3 4 5) ;;
                7) words=(0 1) ;;
                8) words=(AT) ;;
                9) words=(0 1 2 3 4 5 6 7 8 9 10 11 12 20 21 30) ;;
                10) words=(0) ;;
                11) words=(0 1 2 3 4 5 6) ;;
            esac
            ;;
        3)
            case ${COMP_WORDS[1]}.${COMP_WORDS[2]} in
                3.3 | 4.* | 5.0 | 5.2 | 5.3 | 5.6 | 7.* | 9.* | 11.[3-6]) words=(0 1) ;;
                5.10) words=(1 2 3 4 5) ;;
                10.*) words=(1 2 3) ;;
            esac
            ;;
        4)
            case ${COMP_WORDS[1]}.${COMP_WORDS[2]} in
                4.[456]) words=(/nv/item_files/) ;;
                5.0 | 5.3 | 5.10) words=(0 1) ;;
                3.3) words=(0 1 2 3 4) ;;
            esac
            ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "${words[*]}" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _vxk vxk
