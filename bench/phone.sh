# Shared by the benchmarks that need a phone. To be sourced, with the program's own arguments: [--device SERIAL]
# [--rounds N]. Gives $device, $rounds, $adb, $where (in words), $work (a folder that is cleared at the end) and
# remote_clear, which clears $remote: on the demo phone with the bandwidth of a USB 3 cable, or on a real phone.
device='' rounds=5
while [ $# -gt 0 ]; do
    case $1 in
        --device) device=$2 ;;
        --rounds) rounds=$2 ;;
        *) echo "$0 [--device SERIAL] [--rounds N]" >&2; exit 2 ;;
    esac
    shift 2
done

work=$(mktemp -d)
trap 'rm -rf "$work"; remote_clear' EXIT
remote=/sdcard/Download/vantrel-bench
if [ -n "$device" ]; then
    adb=$(command -v adb)
    where="the phone $device"
    remote_clear() { "$adb" -s "$device" shell rm -rf $remote; }
else
    export VANTREL_RESOURCES=$PWD/build/release/demo DEMO_PHONE_ROOT=$work/phone
    adb=$VANTREL_RESOURCES/platform-tools/adb
    device=demo-phone
    where="the demo phone"
    mkdir -p "$work/phone"
    printf 'stderr-progress=off\nbandwidth=400\n' >"$work/phone.conf"
    remote_clear() { rm -rf "$work/phone/Download/vantrel-bench"; }
fi
