# Shared by ./run, ./test and .ci/run: says what happens, installs what is missing, builds. To be sourced.

say() { printf '\n== %s\n' "$*"; }

# What a Debian 12 needs, and what Homebrew calls the same.
debian_build="g++ lld cmake ninja-build ccache pkg-config qt6-base-dev qt6-svg-dev libgl1-mesa-dev libxcb1-dev
              libfontconfig-dev libexiv2-dev libtag1-dev qt6-image-formats-plugins qcoro-qt6-dev libexpected-dev libbenchmark-dev adb fonts-inter
              fonts-noto-color-emoji xdg-utils qt6-base-private-dev"
debian_test="libgtest-dev libgmock-dev desktop-file-utils appstream dpkg-dev file gzip man-db weston qt6-wayland xvfb
             dbus-daemon"
debian_bench="python3 xvfb"
debian_coverage="gcovr"
debian_fuzz="clang-14 libclang-rt-14-dev"
debian_lint="clang-format-14 clang-tidy-14 python3"
brew_all="cmake ninja ccache pkg-config qt qcoro6 exiv2 taglib tl-expected googletest google-benchmark clang-format llvm"

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# install_missing PACKAGE...: installs the packages that are not there yet.
install_missing() {
    if [ "$(uname)" = Darwin ]; then
        say "Installing what is missing with Homebrew"
        # shellcheck disable=SC2086
        brew install --quiet $brew_all
        brew list --cask android-platform-tools >/dev/null 2>&1 || brew install --cask --quiet android-platform-tools
        return
    fi
    local missing=()
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    if [ ${#missing[@]} = 0 ]; then
        say "All $# packages are installed"
        return
    fi
    say "Installing ${missing[*]}"
    as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures and builds; everything when no target is named.
build() {
    local preset=$1
    shift
    say "Configuring the preset $preset"
    cmake --preset "$preset" >/dev/null
    say "Building ${*:-everything} in build/$preset"
    cmake --build "build/$preset" ${@:+--target "$@"}
}
