# Sourced: a display of its own for the script, on which programs are driven and photographed. Where a program for that is missing
# the test is skipped.
for tool in Xvfb xdotool import compare; do
    command -v $tool >/dev/null || { echo "skipped: no $tool here (scripts/setup kit installs it)"; exit 77; }
done
scratch=$(mktemp -d)
started=()
finish() {
    for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done
    rm -rf "$scratch"
}
trap finish EXIT

Xvfb -displayfd 3 -screen 0 800x600x24 -noreset -nolisten tcp 3>"$scratch/display" 2>"$scratch/Xvfb.log" &
started+=($!)

# until_true SECONDS COMMAND...: waits until the command succeeds.
until_true() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || { echo "in vain: $*"; cat "$scratch"/*.log; return 1; }
        sleep 0.1
    done
}
until_true 60 test -s "$scratch/display"
export DISPLAY=:$(cat "$scratch/display") SDL_VIDEODRIVER=x11 SDL_RENDER_DRIVER=software SDL_AUDIODRIVER=dummy

# open TITLE COMMAND...: starts a program, waits for its window (its number: $window) and gives it the keys.
open() {
    local title=$1
    shift
    "$@" >"$scratch/program.log" 2>&1 &
    program=$!
    started+=($program)
    until_true 60 xdotool search --onlyvisible --name "^$title\$"
    window=$(xdotool search --onlyvisible --name "^$title\$" | head -n 1)
    xdotool windowfocus "$window" mousemove --window "$window" 5 5
}
photograph() { import -silent -window "$window" "$1"; }
same() { [ "$(compare -metric AE "$1" "$2" null: 2>&1)" = 0 ]; }
