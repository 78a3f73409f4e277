# SPDX-License-Identifier: Apache-2.0
# Completion of zorlab for fish. A lab that is served tells its clients and their configurations, if it answers within
# half a second.

# The words behind the command that are no options and no arguments of options.
function __zorlab_words
    set -l skip no
    for word in (commandline -opc)[3..]
        if test $skip = yes
            set skip no
        else if contains -- $word --base-port --samples --fail --job-seconds --listen --estate --seed --clock \
                --client --config --output --legend
            set skip yes
        else if not string match -q -- '-*' $word
            echo -- $word
        end
    end
end

# __zorlab_at COMMAND N: whether the N-th word behind this command is the current one.
function __zorlab_at
    test "$(commandline -opc)[2]" = $argv[1]; and test (count (__zorlab_words)) -eq (math $argv[2] - 1)
end

# __zorlab_ask LAB [CLIENT]
function __zorlab_ask
    KVN_CONF=(string replace -r '^~/' $HOME/ -- "$argv[1]")/kvn.toml \
        timeout 0.5 zorinfo configs $argv[2..] --names 2>/dev/null </dev/null
end

function __zorlab_names
    __zorlab_ask (__zorlab_words)
end

# The configurations of the client behind --client.
function __zorlab_bundled
    set -l words (commandline -opc)
    set -l place (contains -i -- --client $words); or return
    __zorlab_ask (__zorlab_words)[1] $words[(math $place + 1)]
end

function __zorlab_scenarios
    zorlab scenario --json 2>/dev/null | string replace -f -r '^ *"name": "([^"]*)".*' '$1'
end

set -l commands init serve load export jobs scenario schema capture bundle

complete -c zorlab -f
complete -c zorlab -l help -d 'Show a help text'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a init -d 'Make a lab directory'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a serve -d 'Serve the lab until SIGTERM or SIGINT'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a load -d 'Load clients\' configurations'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a export -d 'Write a configuration\'s document'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a jobs -d 'List the submitted jobs'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a scenario -d 'List or prepare scenarios'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a schema -d 'Describe the document and the database'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a capture -d 'Write the document of this machine'
complete -c zorlab -n "not __fish_seen_subcommand_from $commands" -a bundle -d 'Gather what a support engineer needs'

for command in init serve load export jobs bundle
    complete -c zorlab -n "__zorlab_at $command 1" -a '(__fish_complete_directories)'
end
complete -c zorlab -n '__fish_seen_subcommand_from load; and not __zorlab_at load 1' -F
complete -c zorlab -n '__zorlab_at scenario 1' -a '(__zorlab_scenarios)' -d Scenario
complete -c zorlab -n '__zorlab_at scenario 2' -a '(__fish_complete_directories)'
complete -c zorlab -n '__fish_seen_subcommand_from scenario' -l json -d 'Write a JSON document'
complete -c zorlab -n '__zorlab_at export 2' -a '(__zorlab_names)' -d Client
complete -c zorlab -n '__zorlab_at export 3' -a '(__zorlab_names)' -d Configuration

complete -c zorlab -n '__fish_seen_subcommand_from init' -l force -d 'Replace a lab that stands there'
complete -c zorlab -n '__fish_seen_subcommand_from init' -l base-port -x -d 'The first of three ports in a row'
complete -c zorlab -n '__fish_seen_subcommand_from init' -l samples -x -a '(__fish_complete_directories)' \
    -d 'Load the documents of this folder'
complete -c zorlab -n '__fish_seen_subcommand_from init' -l estate -x -a 'small medium large' \
    -d 'Add the clients and targets of a site'
complete -c zorlab -n '__fish_seen_subcommand_from init' -l seed -x -d 'What the estate is drawn from'
complete -c zorlab -n '__fish_seen_subcommand_from init' -l clock -x -d 'When the estate was saved'
complete -c zorlab -n '__fish_seen_subcommand_from serve' -l fail -x -d 'Let requests fail by this rule' \
    -a 'connect version query tree insert update delete transaction dob2v verifyb2v deleteprofile catalogue command listing'
complete -c zorlab -n '__fish_seen_subcommand_from serve' -l job-seconds -x -d 'How long a job stands in a state'
complete -c zorlab -n '__fish_seen_subcommand_from serve' -l listen -x -a '127.0.0.1 ::1 0.0.0.0 ::' \
    -d 'The address to listen on'
complete -c zorlab -n '__fish_seen_subcommand_from serve' -l trace -d 'Write every request to requests.log'
complete -c zorlab -n '__fish_seen_subcommand_from serve' -l clock -x -d 'The time at which jobs end'
complete -c zorlab -n '__fish_seen_subcommand_from schema' -l xsd -d 'The document, as an XML Schema'
complete -c zorlab -n '__fish_seen_subcommand_from schema' -l sql -d 'The database, as SQL statements'
complete -c zorlab -n '__fish_seen_subcommand_from schema' -l md -d 'A reference page of all tables'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l client -x -a '(__zorlab_names)' \
    -d 'With the configuration document of this client'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l config -x -a '(__zorlab_bundled)' \
    -d 'That configuration of the client'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l output -r -F -d 'The archive'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l force -d 'Replace the files that stand there'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l mask -d 'Stand-ins for names and addresses'
complete -c zorlab -n '__fish_seen_subcommand_from bundle' -l legend -r -F -d 'Write what the stand-ins stand for'
