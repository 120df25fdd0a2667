# Completion of ketraqt for bash. Made by scripts/cli-pages.
_ketraqt() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "info tree samples extract check diff report remux chapters timecode hint sdp --help --version" -- "$current")
        return
    fi
    local options
    case ${COMP_WORDS[1]} in
    info)
        options="-h --help --json"
        ;;
    tree)
        options="-h --help --json"
        ;;
    samples)
        options="-h --help --track --from-time --from-sample --count --json"
        case $previous in
        --track)
            :
            return
            ;;
        --from-time)
            :
            return
            ;;
        --from-sample)
            :
            return
            ;;
        --count)
            :
            return
            ;;
        esac
        ;;
    extract)
        options="-h --help --track -o --output"
        case $previous in
        --track)
            :
            return
            ;;
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        esac
        ;;
    check)
        options="-h --help --json"
        ;;
    diff)
        options="-h --help --ignore-times --json"
        ;;
    report)
        options="-h --help -o --output --force"
        case $previous in
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        esac
        ;;
    remux)
        options="-h --help -o --output --flavour --tracks --fast-start --chunk-duration --chunk-size --chapters --rate --start-timecode --dry-run --force"
        case $previous in
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --flavour)
            mapfile -t COMPREPLY < <(compgen -W "mov mp4 m4a m4v 3gp 3g2 amc psp" -- "$current")
            return
            ;;
        --tracks)
            :
            return
            ;;
        --chunk-duration)
            :
            return
            ;;
        --chunk-size)
            :
            return
            ;;
        --chapters)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --rate)
            :
            return
            ;;
        --start-timecode)
            :
            return
            ;;
        esac
        ;;
    chapters)
        options="-h --help -o --output --import --export --force"
        case $previous in
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --import)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --export)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        esac
        ;;
    timecode)
        options="-h --help -o --output --rate --set --force"
        case $previous in
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --rate)
            :
            return
            ;;
        --set)
            :
            return
            ;;
        esac
        ;;
    hint)
        options="-h --help -o --output --mtu --tracks --force --remove --dump"
        case $previous in
        -o | --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --mtu)
            :
            return
            ;;
        --tracks)
            :
            return
            ;;
        esac
        ;;
    sdp)
        options="-h --help"
        ;;
    *) return ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _ketraqt ketraqt
