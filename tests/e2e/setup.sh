# Sourced by every transcript: a simulated handset for the rest of it, and output that compares.
#
# With VXK_TEST_BUS, the tool finds it on the modem bus instead of in its folder, and what an Android machine has beside
# that in the folder which the variable names (android_services.py). The tool's properties stay in the handset's folder.

# Boots a handset in a fresh folder. With an argument, that is the profile's JSON.
boot() {
    halt
    asked_until=0
    export VXK_HANDSET_DIR="$CRAMTMP/h$((++handsets))"
    local profile=()
    if [ $# -gt 0 ]; then
        printf '%s\n' "$1" > "$VXK_HANDSET_DIR.json"
        profile=(--profile "$VXK_HANDSET_DIR.json")
    fi
    if [ -n "$VXK_TEST_BUS" ]; then
        export VXK_MODEM=qrtr VXK_STATE_DIR=$VXK_HANDSET_DIR
        ln -sfn "$VXK_HANDSET_DIR" "$VXK_TEST_BUS/handset"
    fi
    coproc HANDSET { exec vxk-handset serve --dir "$VXK_HANDSET_DIR" ${VXK_TEST_BUS:+--bus qrtr} "${profile[@]}" 2> "$VXK_HANDSET_DIR.err"; }
    handset=$HANDSET_PID
    read -r _ <&"${HANDSET[0]}" || { echo "no handset:"; cat "$VXK_HANDSET_DIR.err"; }
}

# Stops the handset; its folder stays.
halt() {
    [ -n "${handset:-}" ] || return 0
    kill "$handset" 2>/dev/null
    wait "$handset" 2>/dev/null
    handset=
}

# Kills the handset, which leaves everything as it is at that moment.
crash() {
    { kill -9 "$handset"; wait "$handset"; } 2>/dev/null
    handset=
}

# The tool's output without what differs between builds and runs: source lines of log messages, except those that are
# fixed, and addresses.
masked_log() {
    local fixed='init_uim_qmi_client|uim_qmi_client_recovery|error_cb|kelvra_uim_qmi_client_unsol_ind_cb'
    sed -E "/RIL\[($fixed):/!s/RIL\[([^]:]*):[0-9]+\]/RIL[\\1:#]/
        s/^(RIL.* (init_uim_qmi_client|uim_qmi_client|qmi_client_release)) 0x[0-9a-f]+$/\\1 CLIENT/"
}

# The tool, its log masked. `command vxk` shows it as it is.
vxk() {
    local status=0
    command vxk "$@" > "$CRAMTMP/out" || status=$?
    [ -z "$VXK_TEST_BUS" ] || { echo > "$VXK_TEST_BUS/settle" && read -r _ < "$VXK_TEST_BUS/settled"; }
    masked_log < "$CRAMTMP/out"
    return $status
}

# The tool's output without the five lines of the extension channel, which nvefs.t and raw_qmi.t show.
past_channel() {
    vxk "$@" | grep -avE '^(KELVRA_QMI_NV: |QMI client inited|kelvra_extend_qmi_(send_sync resp_len|handle_req_cb result):)' || true
}

# The same without log lines: what a script would keep.
answer() { past_channel "$@" | grep -av '^RIL\[' || true; }

# Lines as one.
folded() { paste -sd '|' | sed 's/|/ | /g'; }

# Output with an abort in it, without what user-mode emulation says of that.
aborted() { grep -av '^qemu: uncaught target signal'; }

# What a script wants to know of the handset's state.
property() { printf '%s\n' "$(cat "$VXK_HANDSET_DIR/properties/$1" 2>/dev/null || echo "(unset)")"; }
efs() { od -An -v -tx1 "$VXK_HANDSET_DIR/efs/$1" 2>/dev/null || echo "(no file)"; }

set_property() { printf %s "$2" > "$VXK_HANDSET_DIR/properties/$1"; }

# What the modem's extension service was asked since the last call, byte for byte.
asked() {
    local log="$VXK_HANDSET_DIR/log/wire.log"
    sed -nE "$((asked_until + 1)),\$ s/^.* qmi\/extension [0-9]+ -> request [^#]*#[0-9]+ //p" "$log"
    asked_until=$(wc -l < "$log")
}

# What the handset shows of one subject.
show() { vxk-handset show | sed -n "/^$1$/,/^$/p"; }

# Waits until the modem has come back from its n-th restart.
restarted() {
    eventually test_count "qmi/extension - -- published" $(($1 + 1))
    eventually test -S "$VXK_HANDSET_DIR/qmi/65508"
}
test_count() { [ "$(grep -c -- "$1" "$VXK_HANDSET_DIR/log/wire.log")" -ge "$2" ]; }

# Cuts the help from the end of the tool's output.
helpless() { sed '/^=========== blew: /,$d'; }

# Waits until a command succeeds.
eventually() {
    local try
    for try in {1..400}; do
        "$@" > /dev/null 2>&1 && return
        sleep 0.05
    done
    echo "not within 20 s: $*"
}

handsets=0
# The device of that name is the machine's, not a test's.
export VXK_AT_DEVICE="$CRAMTMP/smd8"
trap halt EXIT
