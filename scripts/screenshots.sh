#!/bin/bash
# Takes screenshots of all windows, for the user manual and the README.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
. scripts/options.sh
. scripts/packages.sh

usage() {
    cat <<'USAGE'
Usage: scripts/screenshots.sh [--build FOLDER] [--into FOLDER]

Builds the program (folder build/), creates an example company, operates the real program under Xvfb
and openbox, and writes the screenshots to docs/images/.

  --build FOLDER  uses the programs of another build folder, without building
  --into FOLDER   target folder

The program runs on separate file systems, with an invented machine name and date, so that no picture
shows anything of the build machine. That needs root or user namespaces.
USAGE
}

build="" into=$PWD/docs/images inside=no
parse_options "build= into= inside" "$@"
[ -z "$build" ] || build=$(realpath "$build")
into=$(realpath -m "$into")

if [ "$inside" = no ]; then
    # shellcheck disable=SC2086
    install_packages $packages_screenshots
    if [ -z "$build" ]; then
        # shellcheck disable=SC2086
        install_packages $packages_build
        build=$PWD/build
        [ -f build/CMakeCache.txt ] ||
            cmake -G Ninja -S . -B build -DCMAKE_BUILD_TYPE=Release -DTAKSAVAIHE_TESTS=OFF
        # a build time shortly before the change; the next build writes its own again
        rm -f build/shell/build_time.cpp
        SOURCE_DATE_EPOCH=1724734800 cmake --build build --target taksavaihe zavdb
        rm -f build/shell/build_time.cpp
    fi
    mkdir -p "$into"
    own=()
    [ "$(id -u)" -eq 0 ] || own=(--map-root-user)
    # a separate process namespace: everything started here ends with the script
    exec unshare "${own[@]}" --mount --uts --pid --fork --kill-child --mount-proc \
        "$PWD/scripts/screenshots.sh" --inside --build "$build" --into "$into"
fi

# --- from here on: a machine with an invented name

hostname TOIMISTO1
mount -t tmpfs none /srv
mount -t tmpfs none /dev/shm
home=/srv/taksavaihe
mkdir -p $home /srv/yritykset /srv/asetukset /srv/tmp /srv/run
chmod 700 /srv/run
cp "$build/bin/taksavaihe" "$build/bin/zavdb" $home/
export HOME=/srv XDG_CONFIG_HOME=/srv/asetukset XDG_RUNTIME_DIR=/srv/run TMPDIR=/srv/tmp
export LC_ALL=C.UTF-8 TZ=Europe/Helsinki
export QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY XDG_SESSION_TYPE QT_STYLE_OVERRIDE

definition() { # name and description
    local coefficient=1.0120967741935485 level=0 column
    printf '[%s]\nSelite=%s\n' "$1" "$2"
    printf 'LahdeAlvLuokkaEdit=1\nKohdeAlvLuokkaEdit=5\n'
    for column in hinta kaksoishinta hinta3; do
        level=$((level + 1))
        printf 'Hinta%dEdit=%s\nHintaLahde%d=%s\nSailytaAlv0_CheckBox%d=1\n' \
            $level $coefficient $level $column $level
    done
    printf 'asiakashinnasto=1\nKampanjat=1\nMaaraAle=1\ncbVakioLaskutus=1\n'
    printf 'MtCheckBox=1\nSailytaAlv0_CheckBoxMT=1\nOtCheckBox=1\nSailytaAlv0_CheckBoxOT=1\n'
}

company() { # name, folder, products
    $home/zavdb demo "$1" "/srv/yritykset/$2" --products "$3" >/dev/null 2>&1
    mkdir "/srv/yritykset/$2/MAARITYS"
    definition "Alv 24 - 25,5" "Yleinen verokanta 24 % -> 25,5 %" \
        >"/srv/yritykset/$2/MAARITYS/AlvMuutosLomake.INI"
}

screen=""
start_screen() { # width x height
    [ -z "$screen" ] || {
        kill "$screen"
        wait "$screen" 2>/dev/null || true
    }
    rm -f /srv/tmp/display
    Xvfb -displayfd 3 -screen 0 "$1x24" -nolisten tcp 3>/srv/tmp/display >/dev/null 2>&1 &
    screen=$!
    for _ in $(seq 300); do
        [ -s /srv/tmp/display ] && break
        sleep 0.1
    done
    DISPLAY=:$(cat /srv/tmp/display)
    export DISPLAY
    openbox >/dev/null 2>&1 &
    sleep 1
    xsetroot -solid '#5c6f7f' 2>/dev/null || true
}

program=""
start_program() {
    # an early morning on the day of the change
    env -u LC_ALL LANG=fi_FI.UTF-8 LC_CTYPE=C.UTF-8 \
        faketime -f '@2024-09-01 06:30:00' "$home/taksavaihe" "$@" >/srv/tmp/program.log 2>&1 &
    program=$!
}
end_program() {
    pkill -P "$program" 2>/dev/null || true # the child of faketime
    kill "$program" 2>/dev/null || true
    wait "$program" 2>/dev/null || true
    sleep 0.5
}

# The newest window with a title, once it exists. Titles are matched by their ASCII letters, since
# others come in the encoding of the program's locale.
window() {
    local id
    for _ in $(seq 60); do
        id=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | tail -1)
        [ -n "$id" ] && { sleep 0.7; echo "$id"; return; }
        sleep 0.2
    done
    echo "No window \"$1\"; the program said:" >&2
    cat /srv/tmp/program.log >&2
    import -silent -window root "$into/failed.png"
    echo "The screen is in $into/failed.png" >&2
    exit 1
}

keys() { # window, keys...
    xdotool windowactivate "$1" 2>/dev/null || true
    shift
    sleep 0.3
    local key
    for key in "$@"; do
        xdotool key --clearmodifiers "$key"
        sleep 0.25
    done
}

shot() { # name of the picture, window: with its frame
    local x y width height left right top bottom frame
    read -r x y width height <<<"$(xwininfo -id "$2" |
        sed -n -E 's/.*(Absolute upper-left [XY]|Width|Height): *//p' | tr '\n' ' ')"
    frame=$(xprop -id "$2" _NET_FRAME_EXTENTS | sed -n 's/.*= //p' | tr -d ,)
    read -r left right top bottom <<<"${frame:-0 0 0 0}"
    import -silent -window root /srv/tmp/screen.png
    # windows have few colours: a palette keeps the pictures small
    convert /srv/tmp/screen.png +repage -strip \
        -crop "$((width + left + right))x$((height + top + bottom))+$((x - left))+$((y - top))" \
        +repage -define png:exclude-chunks=date,time "PNG8:$into/$1.png"
    echo "$1.png $((width + left + right)) x $((height + top + bottom))"
}

dark_desktop() {
    export XDG_CURRENT_DESKTOP=KDE KDE_FULL_SESSION=true KDE_SESSION_VERSION=5
    cat >/srv/asetukset/kdeglobals <<'COLOURS'
[Colors:Window]
BackgroundNormal=42,46,50
ForegroundNormal=252,252,252
[Colors:View]
BackgroundNormal=27,30,32
BackgroundAlternate=35,38,41
ForegroundNormal=252,252,252
ForegroundInactive=161,169,177
ForegroundLink=29,153,243
[Colors:Button]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
[Colors:Selection]
BackgroundNormal=61,174,233
ForegroundNormal=252,252,252
[Colors:Tooltip]
BackgroundNormal=49,54,59
ForegroundNormal=252,252,252
COLOURS
}
light_desktop() {
    unset XDG_CURRENT_DESKTOP KDE_FULL_SESSION KDE_SESSION_VERSION
    rm -f /srv/asetukset/kdeglobals
}

open_form() { # company, switches; leaves the windows in $main and $form
    start_program "$@"
    main=$(window '^Alvluokkien ja hintojen muutokset$')
    keys "$main" Tab Tab Tab Tab Tab space
    form=$(window '^ALV muutos$')
    keys "$form" alt+l Down
}

changes_window() { # name of the picture
    start_program "Ketju Oy"
    main=$(window '^Alvluokkien ja hintojen muutokset$')
    keys "$main" alt+h
    history=$(window '^Ajohistoria')
    [ "$1" != changes_window ] || shot history "$history"
    keys "$history" alt+m
    changes=$(window '^Muutokset: ')
    sleep 2
    shot "$1" "$changes"
    end_program
}

# a scheduler that answers, and does nothing
printf '#!/bin/sh\n' >$home/systemctl
printf '#!/bin/sh\necho yes\n' >$home/loginctl
chmod +x $home/systemctl $home/loginctl
export PATH=$home:$PATH

question() { # the message box over the form, once it exists
    local id
    for _ in $(seq 50); do
        id=$(xdotool search --onlyvisible --name '^ALV muutos$' | grep -vx "$form" | tail -1 || true)
        [ -z "$id" ] || break
        sleep 0.2
    done
    sleep 0.7
    echo "$id"
}

company Esimerkki esimerkki 2000
company "Ketju Oy" ketju 2000
company "Tukku Oy" tukku 40000
# only products, so that the picture of a run shows products being changed
sed -i -E 's/^(asiakashinnasto|Kampanjat|MaaraAle|cbVakioLaskutus)=1/\1=0/' \
    /srv/yritykset/tukku/MAARITYS/AlvMuutosLomake.INI
$home/zavdb sql "Tukku Oy" "delete from MYYMALAHINNAT" >/dev/null
$home/zavdb demo Kokeilu /srv/yritykset/kokeilu --products 50 >/dev/null 2>&1
printf '[ASETUKSET]\nmaar1=Alv 24 - 25,5\nmaar2=\nmaar3=\nmaar4=\n' >$home/ALVMUUTOS.INI

start_screen 1366x768

start_program "Ketju Oy" /E # the batch list's definition
wait "$program"
faketime -f '@2024-09-01 06:30:00' $home/zavdb undo "Ketju Oy" 1 >/dev/null
start_program "Ketju Oy" /E
wait "$program"
changes_window changes_window

start_program
choice=$(window '^Yrityksen valinta$')
shot company_choice "$choice"
splash=$(window '^Taksavaihe 1.9')
xdotool windowmove "$choice" 0 0 windowraise "$splash" windowmove "$splash" 800 400
sleep 0.5
shot splash "$splash"
keys "$choice" alt+i
dialog=$(window '^Yrityksen lis')
shot add_company "$dialog"
keys "$dialog" Escape
end_program

open_form Esimerkki
shot vat_change_form "$form"
keys "$form" alt+t
dialog=$(window '^M.*ritysarvojen talletus$')
shot save_definition "$dialog"
keys "$dialog" Escape
keys "$form" alt+k
dialog=$(question)
shot rehearsal_question "$dialog"
keys "$dialog" Escape

# the search buttons follow the check boxes of the restrictions in tab order
keys "$form" alt+l Tab Tab Tab Tab
for kind in sub_groups:Aliryhm product_groups:Tuoteryhm main_groups:'P.*ryhm' products:Tuote; do
    keys "$form" Tab space Tab Tab Tab Return
    search=$(window "${kind#*:}.*haku")
    sleep 1
    shot "search_${kind%:*}" "$search"
    keys "$search" Escape
    keys "$form" Tab
done
end_program

open_form Esimerkki
keys "$form" F1
help=$(window 'k.*ytt.*ohje$')
shot help "$help"
keys "$help" Escape
keys "$form" alt+s
sleep 1
shot main_window "$main"
keys "$main" alt+i
dialog=$(window '^Tietoja ohjelmasta$')
shot about "$dialog"
keys "$dialog" Escape
end_program

agree() { # to the question before a run
    question=$(window '^Muutoksen vahvistus$')
    sleep 1 # until the rows are counted
    [ $# -eq 0 ] || shot "$1" "$question"
    keys "$question" alt+m
}

open_form "Tukku Oy"
keys "$form" alt+m
agree
sleep 6
shot run "$form"
end_program # the run is interrupted
open_form "Tukku Oy"
keys "$form" alt+m
shot unfinished_run "$(question)"
end_program

open_form Esimerkki
keys "$form" alt+m
agree run_question
for _ in $(seq 60); do # messages of the steps, one after another
    message=$(xdotool search --onlyvisible --name '^ALV muutos$' | grep -vx "$form" | tail -1 || true)
    if [ -n "$message" ]; then
        sleep 0.7
        [ -f /srv/tmp/message ] || shot message "$message"
        touch /srv/tmp/message
        keys "$message" Return
    fi
    sleep 0.3
done
keys "$form" alt+p
file=$(window '^Talleta PDF-raportti$')
xdotool type /srv/raportti.pdf
keys "$file" Return
for _ in $(seq 50); do
    [ -s /srv/raportti.pdf ] && break
    sleep 0.2
done
end_program
start_program Esimerkki /U
main=$(window '^Alvluokkien ja hintojen muutokset$')
keys "$main" Tab Tab Tab Tab Tab Tab Tab space
dialog=$(window 'ajon ajastus$')
shot schedule "$dialog"
keys "$dialog" Escape
keys "$main" Tab space
log=$(window '^Loki - ')
keys "$log" End
shot log_window "$log"
keys "$log" Escape
end_program
rm -f "$into"/report_*.png
pdftoppm -r 75 -png /srv/raportti.pdf "/srv/tmp/report"
page=0
for picture in /srv/tmp/report-*.png; do
    page=$((page + 1))
    [ $page -le 3 ] || break
    convert "$picture" -strip -bordercolor '#888888' -border 1 \
        -define png:exclude-chunks=date,time "PNG8:$into/report_$page.png"
done

company Malli malli 2000 # whose change has not been run
dark_desktop
open_form Malli
shot vat_change_form_dark "$form"
end_program
changes_window changes_window_dark
light_desktop

export QT_SCALE_FACTOR=1.5
open_form Malli
shot vat_change_form_narrow "$form"
end_program
start_screen 2060x1160
open_form Malli
shot vat_change_form_150 "$form"
end_program
changes_window changes_window_150
