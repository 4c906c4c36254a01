# Completion of ocpsm in bash: the program knows what may follow.
_ocpsm() {
    local rest=${COMP_LINE:0:COMP_POINT} words=() piece kept
    # Words are cut at = and :, which stand in paths: put together what no blank parts, up to the cursor.
    for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        if [[ ${#words[@]} == 0 || $rest == [[:blank:]]* ]]; then
            words+=('')
            rest=${rest#"${rest%%[![:blank:]]*}"}
        fi
        [[ $rest == "$piece"* ]] || piece=$rest
        words[-1]+=$piece
        rest=${rest#"$piece"}
    done
    mapfile -t COMPREPLY < <("$1" --complete "${words[@]:1}" 2>/dev/null | cut -f 1)
    case ${COMPREPLY[0]-} in
    :file) COMPREPLY=() && compopt -o default ;;
    :directory) COMPREPLY=() && compopt -o dirnames ;;
    */ | *=) compopt -o nospace ;;
    esac
    # Only what stands behind the last cut is replaced; within quotes there is none.
    kept=${words[-1]%"${words[-1]##*[=:]}"}
    [[ $kept == [\"\']* ]] || COMPREPLY=("${COMPREPLY[@]#"$kept"}")
}
complete -F _ocpsm ocpsm
