# Completion for quillet-cli.
#
# The subcommands and options are read from the tool's help. This file only completes the values of
# options and the arguments.

# Folders, and files with one of these suffixes.
function __quillet_cli_files
    set -l suffixes (string join '|' $argv)
    __fish_complete_path (commandline -ct) | string match -ri "^[^\t]*(?:/|\.(?:$suffixes))(?:\t.*)?\$"
end

# What a pattern finds in the help: the name and its description.
function __quillet_cli_help
    set -l words (commandline -opc)
    $words[1] $argv[2..-1] --help 2>/dev/null | string replace -rf $argv[1] '$1\t$2'
end

function __quillet_cli_value
    switch $argv[2]
        case -o --output
            switch $argv[1]
                case export-pdf
                    __quillet_cli_files pdf
                case export-html
                    __quillet_cli_files html
                case thumbnail
                    __quillet_cli_files png
                case '*'
                    __quillet_cli_files quillet
            end
        case --csv --findings
            __quillet_cli_files csv
        case --folder
            __fish_complete_directories (commandline -ct) ''
        case --over-page
            printf '%s\n' 1 10 100 1000
        case --orientation
            printf '%s\n' portrait landscape
        case --resolution
            printf '%s\n' 96 180 276 372
        case --first --copy --size --header-1 --header-2 --footer --title --name --max-width --dpi --pages \
                --pdf-pages --label-size --label-color --order --remove --extract --rename --rotate --jobs
            # Free text or a number.
        case '*'
            return 1
    end
end

function __quillet_cli_complete
    set -l words (commandline -opc)
    set -l subcommand (string match -v -- '-*' $words[2..-1])[1]
    set -l token (commandline -ct)
    if string match -q -- '--*=*' $token
        set -l option (string split -m 1 = -- $token)[1]
        __quillet_cli_value "$subcommand" $option | string replace -r -- '^' "$option="
        return
    end
    __quillet_cli_value "$subcommand" $words[-1]
    and return
    if string match -q -- '-*' $token
        __quillet_cli_help '^  (?:-[a-z], )?(--[a-z0-9-]+)(?: <[^>]*>)? *(.*)$' $subcommand
        return
    end
    switch "$subcommand"
        case ''
            __quillet_cli_help '^  ([a-z][a-z-]*)  +(.*)$'
        case create
            __quillet_cli_files bmp gif jpg jpeg pdf pbm pgm png ppm tif tiff webp xbm xpm
        case kept
            # No argument.
        case recover
            __quillet_cli_files quillet log
        case '*'
            __quillet_cli_files quillet qld
    end
end

complete -c quillet-cli -f -a '(__quillet_cli_complete)'
