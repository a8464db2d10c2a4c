# Completes the command line of vantor in bash, by what its help says.

# The names in one part of a help: _vantor_names PART WORD..., where PART is Commands or Options.
_vantor_names() {
    "${@:2}" --help 2>/dev/null | sed -n "/^$1:/,/^\$/{s/^  \(-h,\)\{0,1\}\([a-z-][a-z-]*\).*/\2/p}"
}

_vantor() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} each
    local called=("${COMP_WORDS[0]}")
    for each in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        [[ " $(_vantor_names Commands "${called[@]}" | tr '\n' ' ')" == *" $each "* ]] && called+=("$each")
    done
    local commands
    commands=$(_vantor_names Commands "${called[@]}")
    if [[ $before == --trace ]]; then
        COMPREPLY=($(compgen -W "error warning info verbose" -- "$word"))
    elif [[ $word == -* ]]; then
        COMPREPLY=($(compgen -W "$(_vantor_names Options "${called[@]}")" -- "$word"))
    elif [[ -n $commands ]]; then
        COMPREPLY=($(compgen -W "$commands" -- "$word"))
    else
        compopt -o filenames 2>/dev/null
        local IFS=$'\n'
        COMPREPLY=($(compgen -f -- "$word"))
    fi
}

complete -F _vantor vantor
