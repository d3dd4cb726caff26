# Fish completion for vespra.

complete -c vespra -f
complete -c vespra -l headless -d 'Run in the terminal, without windows'
complete -c vespra -l timer -x -a '15m 30m 1h 2h 4h 8h' -d 'End after this time'
complete -c vespra -l until -x -d 'End at this time of day, such as 18:30'
complete -c vespra -l unlimited -d 'End only when stopped'
complete -c vespra -l agent -d 'End when the coding agents have finished'
complete -c vespra -l idle -d 'Start no session'
complete -c vespra -l grace -x -a '0s 1m 2m 5m 15m' -d 'How long all agents must stay done'
complete -c vespra -l display -d 'Keep the display on too'
complete -c vespra -l closed-lid -d 'Stay awake with the lid closed'
complete -c vespra -l settings -r -F -d 'Settings for this run, as JSON'
complete -c vespra -l platform -x -a 'linux macos simulated' -d 'The system'
complete -c vespra -l render -x -a '(__fish_complete_directories)' -d 'Draw pictures of every window into this folder'
complete -c vespra -l only -x -d 'With --render: only the picture of this name'
complete -c vespra -l version -d 'Print the version'
complete -c vespra -l help -d 'Print help'
