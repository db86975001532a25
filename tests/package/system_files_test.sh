#!/bin/sh
# Usage: system_files_test.sh ROOT
# Starts a message bus that forbids everything by default, as a system's does, adds the installed policy and
# activation file, and reaches the installed engine through them.
set -eu

# The policy lets root be the engine; anybody is root in a user namespace of his own.
[ "$(id -u)" -eq 0 ] || exec unshare --user --map-root-user "$0" "$@"

root=$1
work=$(mktemp -d)
bus=
clean_up() {
    [ -z "$bus" ] || kill "$bus"
    rm -rf "$work"
}
trap clean_up EXIT

# Everything that the files name is there.
unit=$(find "$root" -path '*/systemd/system/qra-content-engine.service')
for program in $(sed -n 's/^ExecStart=//p' "$unit") \
               $(sed -n 's/^Exec=//p' "$root/share/dbus-1/system-services/com.morva.qra.engine.service"); do
    [ -x "$program" ]
done
user=$(sed -n 's/^User=//p' "$unit")
grep -q "^u $user " "$(find "$root" -path '*/sysusers.d/qra-engine.conf')"
grep -q "<policy user=\"$user\">" "$root/share/dbus-1/system.d/com.morva.qra.engine.conf"

# The bus of a test starts the engine as the user who runs it, not as the engine's own.
mkdir "$work/services"
sed -e '/^User=/d' -e '/^SystemdService=/d' "$root/share/dbus-1/system-services/com.morva.qra.engine.service" \
    > "$work/services/com.morva.qra.engine.service"
cat > "$work/bus.conf" <<CONF
<busconfig>
  <type>system</type>
  <keep_umask/>
  <listen>unix:path=$work/socket</listen>
  <auth>EXTERNAL</auth>
  <servicedir>$work/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
  </policy>
  <include>$root/share/dbus-1/system.d/com.morva.qra.engine.conf</include>
</busconfig>
CONF
mkfifo "$work/address"
dbus-daemon --config-file="$work/bus.conf" --nofork --nopidfile --print-address=3 3> "$work/address" &
bus=$!
read -r DBUS_SYSTEM_BUS_ADDRESS < "$work/address"
export DBUS_SYSTEM_BUS_ADDRESS
answer=$(gdbus call --system --dest com.morva.qra.engine --object-path /com/morva/qra/engine \
    --method com.morva.qra.engine.start_server start_server)
[ "$answer" = "('QRA_SERVER_START_SUCCESS',)" ]
