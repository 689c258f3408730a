The simulated handset's own command line: run, show, log, and what it refuses.

  $ . "$TESTDIR/setup.sh"
  $ masked() { sed -E 's/^[0-9-]+ [0-9:.]+ //; s/process [0-9]+/process #/'; }

A run has the command's status, and leaves its folder when that has a name.

  $ vxk-handset run --dir h -- sh -c 'cd /; test -S "$VXK_HANDSET_DIR/qmi/65508" && exit 7'
  [7]
  $ ls h/qmi h/staging
  h/qmi:
  
  h/staging:
  $ vxk-handset run -- sh -c 'echo "$VXK_HANDSET_DIR" > temporary; kill -9 $$'
  [137]
  $ test -e "$(cat temporary)"
  [1]
  $ vxk-handset run -- no-such-command
  vxk-handset: cannot run no-such-command: No such file or directory
  [127]
  $ vxk-handset run -- ./h
  vxk-handset: cannot run ./h: Permission denied
  [126]

The programs find each other, whatever the PATH.

  $ env -i VXK_AT_DEVICE="$VXK_AT_DEVICE" "$(command -v vxk-handset)" run -- sh -c 'vxk 4 1 0 10 > vxk.out; vxk-handset --version'
  vxk-handset \d+\.\d+\.\d+ (re)
  $ grep -c 'inited' vxk.out
  1

A run that is killed takes its command with it; its folder goes with the next run, and no other does.

  $ export TMPDIR="$CRAMTMP/t"
  $ mkdir -p t "$TMPDIR"/vxk-handset.strange "$TMPDIR"/vxk-handset.stran
  $ vxk-handset run -- sh -c 'echo $$ > t/command; exec sleep 1000' & run=$!
  $ eventually test -s t/command; vxk-handset run -- ls "$TMPDIR" 2> /dev/null | wc -l
  4
  $ { kill -9 $run; wait $run; } 2> /dev/null
  [137]
  $ gone() { ! kill -0 "$(cat t/command)"; }; eventually gone
  $ ls "$TMPDIR" | wc -l; vxk-handset run -- true; ls "$TMPDIR"
  3
  vxk-handset.stran
  vxk-handset.strange
  $ unset TMPDIR

What keeps a handset from booting is one line.

  $ vxk-handset run --dir h -- vxk-handset run --dir h -- true 2>&1 | masked
  vxk-handset: a handset is already running in /*/h (process #) (glob)
  $ vxk-handset run --dir no/where -- true
  vxk-handset: cannot create the folder /*/no/where: No such file or directory (glob)
  [125]
  $ vxk-handset serve --dir /tmp/$(printf %090d 0)
  vxk-handset: the folder's name is too long for a socket (95 characters, at most 89): /tmp/0* (glob)
  [1]
  $ echo '{"modem": {"restart_ms": "soon"}}' > p.json
  $ vxk-handset run --profile p.json -- true
  vxk-handset: p.json: /modem/restart_ms: expected a whole number from 0 to 600000, found "soon"
  [125]
  $ vxk-handset run --profile - -- true < p.json
  vxk-handset: standard input: /modem/restart_ms: expected a whole number from 0 to 600000, found "soon"
  [125]
  $ vxk-handset run --profile <(echo '{"sar": {"dsi": 9}}') -- vxk 5 5 | grep -o '= 9'
  = 9
  $ vxk-handset run --profile /dev/zero -- true
  vxk-handset: the profile /dev/zero is longer than 16777216 bytes
  [125]
  $ vxk-handset run --profile absent.json -- true
  vxk-handset: cannot read the profile absent.json: No such file or directory
  [125]
  $ vxk-handset show --dir nowhere
  vxk-handset: there is no handset in /*/nowhere; start one with: vxk-handset serve --dir /*/nowhere (glob)
  [1]
  $ vxk-handset run > /dev/null 2>&1
  [2]

Show and log work from the folder, whether the handset lives or not.

  $ boot
  $ mkdir -p "$VXK_HANDSET_DIR"/efs/0/nv/item_files "$VXK_HANDSET_DIR"/nv/1
  $ printf abc > "$VXK_HANDSET_DIR/efs/0/nv/item_files/demo"
  $ printf a > "$VXK_HANDSET_DIR/nv/1/10"
  $ printf 'two words' > "$VXK_HANDSET_DIR/properties/persist.demo"
  $ vxk-handset show | sed -n '/^properties/,$p'
  properties
    persist.demo  "two words"
  
  efs, subscription 0
    /nv/item_files/demo  3 bytes
  
  nv, subscription 0
    none
  
  nv, subscription 1
      10  1 byte
  $ vxk-handset show | sed -n 1,4p | masked
  handset /*/h1 (glob)
    running, process #
  
  services
  $ vxk-handset show | grep 65508
    qmi 65508  extension
  $ crash
  $ vxk-handset show | sed -n 2,5p
    not running
  
  services
    none
  $ boot
  $ halt
  $ vxk-handset log | grep -E ' (modem|qmi/extension) - ' | masked
  modem - -- boot
  qmi/extension - -- published
  qmi/extension - -- withdrawn
  modem - -- off
  $ for what in show log; do vxk-handset $what > /dev/full; echo $?; done
  vxk-handset: cannot write to standard output: No space left on device
  1
  vxk-handset: cannot write to standard output: No space left on device
  1
  $ vxk-handset log --system
  vxk-handset: cannot read /*/h2/log/system.log: No such file or directory (glob)
  [1]
