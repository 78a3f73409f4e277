# SPDX-License-Identifier: Apache-2.0
# Completion of zorb2v for fish. The recovery daemon tells the clients and their configurations, if it answers within
# half a second.

function __zorb2v_clients
    timeout 0.5 zorinfo configs --names 2>/dev/null </dev/null
end

function __zorb2v_configurations
    set -l words (commandline -opc)
    set -l place (contains -i -- -C $words); or return
    set -l client $words[(math $place + 1)]
    test -n "$client"; and timeout 0.5 zorinfo configs $client --names 2>/dev/null </dev/null
end

# __zorb2v_behind OPTION LEAST: whether the word in front is this option cut short, which is none to fish.
function __zorb2v_behind
    set -l word (commandline -opc)[-1]
    test (string length -- $word) -ge $argv[2]; and test $word != $argv[1]; and string match -q -- "$word*" $argv[1]
end

# The options, for "complete" with these arguments in front: "zorinfo check" takes them, too.
function __zorb2v_options
    complete $argv -o C -x -a '(__zorb2v_clients)' -d 'The client, as the backup suite calls it'
    complete $argv -o vmserver -x -a '(__fish_print_hostnames)' -d 'The vCenter or ESX server for the machine'
    complete $argv -o vmproxy -x -a '(__fish_print_hostnames)' -d 'The backup host that reaches that server'
    complete $argv -o veconfig -r -F -d 'The file that describes the target'
    complete $argv -o S -x -a '(__fish_print_hostnames)' -d 'The master server'
    complete $argv -o config -x -a '(__zorb2v_configurations)' -d 'The client\'s saved configuration'
    complete $argv -o vmw -d 'The target is VMware'
    complete $argv -o vmhv -d 'The target is Hyper-V, which is refused'
    complete $argv -o vmpo -d 'Power the machine on after the conversion'
    complete $argv -o vmsn -d 'Strip the network interfaces'
    complete $argv -o O -d 'Overwrite a machine of the same name'
    complete $argv -o systemOnly -d 'Convert the disks of the system only'
    complete $argv -o veprofile -x -d 'The profile that the console has made'
    complete $argv -o gui -d 'The console has made and checked the target'
    complete $argv -o zorb2v -d 'Another program is the caller'
    complete $argv -o version -x -d 'The caller\'s version'
    complete $argv -o esxhost -d 'Not used'
    complete $argv -o help -d 'Show the usage text'
    complete $argv -n '__zorb2v_behind -vmserver 5; or __zorb2v_behind -vmproxy 5' -a '(__fish_print_hostnames)'
    complete $argv -n '__zorb2v_behind -veconfig 4' -F
    complete $argv -n '__zorb2v_behind -config 3' -a '(__zorb2v_configurations)'
end

complete -c zorb2v -f
__zorb2v_options -c zorb2v
