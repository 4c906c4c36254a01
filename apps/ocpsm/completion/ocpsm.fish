# Completion of ocpsm in fish: the program knows what may follow.
function __ocpsm_complete
    set -l words (commandline --tokenize --cut-at-cursor --current-process)
    set -l current (commandline --current-token --cut-at-cursor)
    set -l lines ($words[1] --complete $words[2..-1] "$current" 2>/dev/null)
    switch "$lines[1]"
        case :file
            __fish_complete_path "$current"
        case :directory
            __fish_complete_directories "$current"
        case '*'
            printf '%s\n' $lines
    end
end
complete --command ocpsm --no-files --arguments '(__ocpsm_complete)'
