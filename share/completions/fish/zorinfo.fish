# SPDX-License-Identifier: Apache-2.0
# Completion of zorinfo for fish. The recovery daemon tells the clients and their configurations, if it answers within
# half a second.

source (status dirname)/zorb2v.fish

# The subcommand, and the words behind it that are no options and no arguments of options.
function __zorinfo_words
    set -l skip no
    for word in (commandline -opc)[2..]
        if test $skip = yes
            set skip no
        else if contains -- $word --file --veconfig --wait --client --config --output --legend --limit
            set skip yes
        else if not string match -q -- '-*' $word
            echo -- $word
        end
    end
end

# __zorinfo_at COMMAND N: whether the N-th word behind this subcommand is the current one.
function __zorinfo_at
    set -l words (__zorinfo_words)
    test "$words[1]" = $argv[1]; and test (count $words) -eq $argv[2]
end

function __zorinfo_names
    set -l words (__zorinfo_words)
    timeout 0.5 zorinfo configs $words[2..] --names 2>/dev/null </dev/null
end

# The configurations of the client behind --client.
function __zorinfo_bundled
    set -l words (commandline -opc)
    set -l place (contains -i -- --client $words); or return
    timeout 0.5 zorinfo configs $words[(math $place + 1)] --names 2>/dev/null </dev/null
end

# The configurations of the client behind "draft".
function __zorinfo_configurations
    set -l words (__zorinfo_words)
    test (count $words) -ge 2; and timeout 0.5 zorinfo configs $words[2] --names 2>/dev/null </dev/null
end

function __zorinfo_subjects
    zorinfo explain 2>/dev/null | string replace -r ' .*' ''
end

set -l commands bundle check configs draft explain inventory layout profiles tasks

complete -c zorinfo -f
complete -c zorinfo -l json -d 'Answer with a JSON document'
complete -c zorinfo -l no-color -d 'No colours'
complete -c zorinfo -l help -d 'Show a help text'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a bundle -d 'Gather what a support engineer needs'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a check -d 'Tell all that stands against a conversion'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a configs -d 'List the clients and their configurations'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a draft -d 'Write a configuration file for a client'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a explain -d 'Tell what a message or a finding means'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a inventory -d 'Show the objects of a target'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a layout -d 'Show a client\'s storage'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a profiles -d 'Show and compare recorded targets'
complete -c zorinfo -n "not __fish_seen_subcommand_from $commands" -a tasks -d 'Tell what became of conversions'

__zorb2v_options -c zorinfo -n '__fish_seen_subcommand_from bundle check'

complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l client -x -a '(__zorinfo_names)' \
    -d 'With the configuration document of this client'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l config -x -a '(__zorinfo_bundled)' \
    -d 'That configuration of the client'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l output -r -F -d 'The archive'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l force -d 'Replace the files that stand there'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l mask -d 'Stand-ins for names and addresses'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l legend -r -F -d 'Write what the stand-ins stand for'
complete -c zorinfo -n '__fish_seen_subcommand_from bundle' -l limit -x -d 'How long to wait for each answer'

complete -c zorinfo -n '__zorinfo_at draft 1' -a '(__zorinfo_names)' -d Client
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o vmserver -x -a '(__fish_print_hostnames)' \
    -d 'The vCenter or ESX server for the machine'
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o vmproxy -x -a '(__fish_print_hostnames)' \
    -d 'The backup host that reaches that server'
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o config -x -a '(__zorinfo_configurations)' \
    -d 'The client\'s saved configuration'
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o S -x -a '(__fish_print_hostnames)' -d 'The master server'
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o systemOnly -d 'Convert the disks of the system only'
complete -c zorinfo -n '__fish_seen_subcommand_from draft' -o vmsn -d 'Strip the network interfaces'

complete -c zorinfo -n '__zorinfo_at configs 1' -a '(__zorinfo_names)' -d Client
complete -c zorinfo -n '__fish_seen_subcommand_from configs' -l names -d 'Names alone, one a line'

complete -c zorinfo -n '__zorinfo_at explain 1' -a '(__zorinfo_subjects)'
complete -c zorinfo -n '__fish_seen_subcommand_from explain' -l man -d 'The messages as the lists of a manual page'
complete -c zorinfo -n '__fish_seen_subcommand_from explain' -l md -d 'All of them as a page in Markdown'

complete -c zorinfo -n '__fish_seen_subcommand_from inventory' -o vmserver -x -a '(__fish_print_hostnames)' \
    -d 'The vCenter or ESX server to show'
complete -c zorinfo -n '__fish_seen_subcommand_from inventory' -o vmproxy -x -a '(__fish_print_hostnames)' \
    -d 'The backup host that reaches that server'
complete -c zorinfo -n '__fish_seen_subcommand_from inventory' -o S -x -a '(__fish_print_hostnames)' \
    -d 'The master server'

complete -c zorinfo -n '__zorinfo_at layout 1' -a '(__zorinfo_names)' -d Client
complete -c zorinfo -n '__zorinfo_at layout 2' -a '(__zorinfo_names)' -d Configuration
complete -c zorinfo -n '__fish_seen_subcommand_from layout' -l file -r -F -d 'Read a saved configuration document'
complete -c zorinfo -n '__fish_seen_subcommand_from layout' -l veconfig -r -F -d 'Also show what a target\'s file has'
complete -c zorinfo -n '__fish_seen_subcommand_from layout' -l svg -d 'Write a drawing'
complete -c zorinfo -n '__fish_seen_subcommand_from layout' -l dot -d 'Write a graph'

complete -c zorinfo -n '__zorinfo_at profiles 1' -a show -d 'Show all of a profile'
complete -c zorinfo -n '__zorinfo_at profiles 1' -a diff -d 'Show what differs between two profiles'

complete -c zorinfo -n '__zorinfo_at tasks 1' -a '(__zorinfo_names)' -d Client
complete -c zorinfo -n '__fish_seen_subcommand_from tasks' -l follow -d 'Tell each change until none runs'
complete -c zorinfo -n '__fish_seen_subcommand_from tasks' -l wait -x -d 'Come back when none runs, or after these seconds'
