# shellcheck shell=bash
# Option parsing, sourced by the other scripts.

# parse_options "SPECIFICATION" "$@": sets a variable for each option on the command line.
#
#   kills=     --kills VALUE (or --kills=VALUE) sets $kills
#   gui        --gui sets $gui to "yes"; dashes in an option become underscores in its variable
#   ARGUMENTS  accepts positional arguments, in the array $arguments
#
# --help and -h call the script's function usage and exit. Anything not in the specification exits
# with status 2.
parse_options() {
    local specification=" $1 " name value
    shift
    arguments=()
    while [ $# -gt 0 ]; do
        name=${1%%=*}
        name=${name#--}
        case "$1" in
            --help | -h)
                usage
                exit 0
                ;;
            --*)
                if [[ $specification == *" $name= "* ]]; then
                    if [[ $1 == *=* ]]; then
                        value=${1#*=}
                    elif [ $# -gt 1 ]; then
                        value=$2
                        shift
                    else
                        wrong_usage "$1 takes a value."
                    fi
                    printf -v "${name//-/_}" %s "$value"
                elif [[ $specification == *" $name "* && $1 != *=* ]]; then
                    printf -v "${name//-/_}" yes
                else
                    wrong_usage "There is no option $1."
                fi
                ;;
            *)
                if [[ $1 == -* || $specification != *" ARGUMENTS "* ]]; then
                    wrong_usage "There is no argument $1."
                fi
                arguments+=("$1")
                ;;
        esac
        shift
    done
}

# Prints an error and the usage; exits with status 2.
wrong_usage() { # MESSAGE
    printf '%s: %s\n\n' "$(basename "$0")" "$1" >&2
    usage >&2
    exit 2
}
