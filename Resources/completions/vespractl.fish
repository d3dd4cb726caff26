# Fish completion for vespractl.

# Whether the words before the cursor that are no options, nor the value of one, are exactly these.
function __vespractl_at
    set -l words (commandline -opc)[2..-1]
    set -l plain
    set -l before
    for word in $words
        test "$before" = --home; or string match -q -- '-*' $word; or set -a plain $word
        set before $word
    end
    test "$plain" = "$argv"
end

# The keys of the settings with their meaning, or the values of one; the program knows them.
function __vespractl_settings
    vespractl settings complete $argv 2>/dev/null
end

complete -c vespractl -f
complete -c vespractl -l help -d 'Print help'
complete -c vespractl -n '__vespractl_at' -l version -d 'Print the version'
for verb in \
    'status	Tell how the session, the closed lid and the agents stand' \
    'start	Start a session' \
    'stop	End the session, if one runs' \
    'toggle	End the session, or start one' \
    'extend	Move the end of the session 15 minutes ahead' \
    'keep-awake	Keep the agent session going when the agents are done' \
    'cancel	Call off the sleep or shutdown that is to follow the agents' \
    'display	Keep the display on too, or let it go off' \
    'closed-lid	Stay awake with the lid closed, or sleep when it closes' \
    'run	Keep awake while a command runs' \
    'wait	Wait until no session runs' \
    'settings	Read and change what you can set' \
    'doctor	Say what keeps this machine awake' \
    'machine	Steer the simulated laptop' \
    'hooks	Connect coding agents' \
    'simulate	Play a scenario in virtual time'
    set -l parts (string split \t -- $verb)
    complete -c vespractl -n __vespractl_at -a $parts[1] -d $parts[2]
end

complete -c vespractl -n '__fish_seen_subcommand_from status doctor get list' -l json -d 'As JSON'
complete -c vespractl -n '__vespractl_at status' -l watch -d 'Go on, and tell every change'
complete -c vespractl -n '__vespractl_at start' -a 'timer until unlimited agent'
complete -c vespractl -n '__fish_seen_subcommand_from start run' -l display -d 'Keep the display on too'
complete -c vespractl -n '__fish_seen_subcommand_from start run' -l closed-lid -d 'Stay awake with the lid closed'
complete -c vespractl -n '__fish_seen_subcommand_from start' -l no-display -d 'Let the display go off'
complete -c vespractl -n '__fish_seen_subcommand_from start' -l no-closed-lid -d 'Sleep when the lid closes'
complete -c vespractl -n '__vespractl_at display; or __vespractl_at closed-lid' -a 'on off'
complete -c vespractl -n '__vespractl_at closed-lid' -a 'set-up remove'
complete -c vespractl -n '__fish_seen_subcommand_from run' -a '(__fish_complete_subcommand --fcs-skip=2)'
complete -c vespractl -n '__vespractl_at settings; or __vespractl_at machine' -a 'get set'
complete -c vespractl -n '__vespractl_at settings' -a list
complete -c vespractl -n '__vespractl_at settings get; or __vespractl_at settings set' -a '(__vespractl_settings)'
complete -c vespractl -n '__vespractl_at settings set (commandline -opc)[-1]' \
    -a '(__vespractl_settings (commandline -opc)[-1])'
complete -c vespractl -n '__fish_seen_subcommand_from machine; and __fish_seen_subcommand_from set' -a '
    battery=none battery=20 battery=100 charger=on charger=off lid=open lid=closed display=internal display=external
    screen=on screen=off thermal=nominal thermal=fair thermal=serious thermal=critical helper=ready helper=notInstalled
    helper=awaitingApproval helper=failed helper=noBuiltInDisplay helper=unsignedBuild helper=refusing helper=outdated
    helper=stuck appearance=light appearance=dark contrast=normal contrast=high motion=full motion=reduced sleep=now
    shortcut=pressed update= press=session.endingSoon/session.extend press=agents.finished/agents.cancelForcedAction'
complete -c vespractl -n '__vespractl_at hooks' -a 'status preview connect disconnect'
complete -c vespractl -n '__fish_seen_subcommand_from hooks' -l home -r -a '(__fish_complete_directories)' \
    -d 'Another home directory'
complete -c vespractl -n '__vespractl_at hooks preview; or __vespractl_at hooks connect; or __vespractl_at hooks disconnect' \
    -a 'claude codex'
complete -c vespractl -n '__vespractl_at simulate' -F
