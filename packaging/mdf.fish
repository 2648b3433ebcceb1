# Completion of mdf's command line: the program that is installed says what a word may become.

function __mdf_complete
    set -l words (commandline -opc)
    set -l word (commandline -ct)
    set -l lines (command $words[1] --complete $words[2..-1] "$word" 2> /dev/null)
    switch "$lines[1]"
        case words
            printf '%s\n' $lines[2..-1]
        case measurements
            __fish_complete_path "$word" | string match --regex --ignore-case '^[^\t]*(?:/|\.mf4)(?:\t.*)?$'
        case files
            __fish_complete_path "$word"
        case folders
            __fish_complete_directories "$word"
    end
end

complete --command mdf --no-files --keep-order --arguments '(__mdf_complete)'
