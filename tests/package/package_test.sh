#!/bin/sh
# Usage: package_test.sh STEP, with the build's facts in the environment (see CMakeLists.txt).
# Installs the build tree into $WORK/root, then builds and runs clients of that installation and nothing else.
set -eu

root=$WORK/root
PKG_CONFIG_PATH=$(dirname "$(find "$root" -name qra-content-agent.pc 2>/dev/null)" 2>/dev/null):${PKG_CONFIG_PATH:-}
export PKG_CONFIG_PATH

# The client has to run without help from the environment, on libraries of the installation alone.
run_client() {
    unset LD_LIBRARY_PATH
    [ "$("$1")" = "qra-content-agent $VERSION" ]
    libraries=$(ldd "$1" | grep -E 'libqra-' | awk '{ print $3 }')
    [ -n "$libraries" ]
    for library in $libraries; do
        case $library in
            "$root"/*) ;;
            *) echo "$library is not of the installation" >&2; exit 1 ;;
        esac
    done
}

case $1 in
    install)
        rm -rf "$WORK"
        "$CMAKE" --install "$BUILD" --prefix "$root"
        ;;
    find_package)
        "$CMAKE" -S "$SOURCE/tests/package/find_package" -B "$WORK/find_package" -DCMAKE_PREFIX_PATH="$root" \
            -DCMAKE_C_COMPILER="$CC" -DQRA_EXPECTED_VERSION="$VERSION"
        "$CMAKE" --build "$WORK/find_package"
        run_client "$WORK/find_package/client"
        ;;
    pkg_config)
        [ "$(pkg-config --modversion qra-content-agent)" = "$VERSION" ]
        libdir=$(pkg-config --variable=libdir qra-content-agent)
        # shellcheck disable=SC2046
        "$CC" -std=c99 -Wall -Wextra -Werror -o "$WORK/pkg-config-client" "$SOURCE/tests/package/client.c" \
            $(pkg-config --cflags --libs qra-content-agent) -Wl,-rpath,"$(realpath "$libdir")"
        run_client "$WORK/pkg-config-client"
        ;;
    external_platform)
        "$CMAKE" -G Ninja -S "$SOURCE" -B "$WORK/external" -DCMAKE_BUILD_TYPE=Debug -DQRA_PLATFORM=external \
            -DQRA_BUILD_TESTS=OFF -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX"
        "$CMAKE" --build "$WORK/external"
        if find "$WORK/external" -name 'libqra-platform-*' | grep .; then
            echo "services were built, though external ones are asked for" >&2
            exit 1
        fi
        ;;
    system_files)
        exec "$SOURCE/tests/package/system_files_test.sh" "$root"
        ;;
    *)
        sed -n '2,3p' "$0" >&2
        exit 1
        ;;
esac
