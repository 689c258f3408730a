Whose the AT device is: a handset takes it when it is free or left behind by a dead handset, and never anything else.

  $ . "$TESTDIR/setup.sh"
  $ device() { readlink "$VXK_AT_DEVICE" | sed "s|$CRAMTMP|TMP|"; }
  $ complaint() { sed "s|$CRAMTMP|TMP|g" "$VXK_HANDSET_DIR.err"; }

Free: linked while the handset is there. What is written arrives as it is, with control characters escaped in the log.

  $ boot; device; complaint
  TMP/h1/at
  $ printf 'AT\001\t"\\\377\r\nAT%%s\n\ntail' > "$VXK_AT_DEVICE"
  $ eventually test_count 'at - ->' 3; printf '\n' > "$VXK_AT_DEVICE"; eventually test_count 'at - ->' 4
  $ grep -o 'at - -> .*' "$VXK_HANDSET_DIR/log/wire.log" | folded
  at - -> line="AT\x01\t\"\\\xFF\r" | at - -> line="AT%s" | at - -> line="" | at - -> line="tail"
  $ printf '%05000d\n' 0 > "$VXK_AT_DEVICE"; eventually test_count 'at - ->' 6; show at | grep lines
    lines     6

Another handset leaves it alone, says so when its command wants the device, and has its terminal all the same.

  $ vxk-handset run --dir other -- sh -c 'echo AT2 > other/at; : vxk 8 AT; until grep -q AT2 other/log/wire.log; do sleep 0.02; done; vxk-handset show' 2>err | grep 'device  '
    device    none
  $ sed "s|$CRAMTMP|TMP|g; s|$PWD|PWD|g" err
  vxk-handset: cannot link TMP/smd8, so vxk 8 does not reach this handset, only TMP/at_device.t/other/at does: it belongs to the handset in TMP/h1
  $ grep -o 'at - -> .*' other/log/wire.log
  at - -> line="AT2"
  $ vxk-handset run -- true
  $ device
  TMP/h1/at
  $ halt; device; ls "$CRAMTMP/h1/at" "$VXK_AT_DEVICE" 2>/dev/null
  [2]

Left behind by a handset that was killed: taken over.

  $ boot; crash; device
  TMP/h2/at
  $ boot; device; complaint
  TMP/h3/at
  $ halt

A file, a pipe, somebody's link, and no folder to link in: left as they are.

  $ echo mine > "$VXK_AT_DEVICE"; boot; complaint; halt; cat "$VXK_AT_DEVICE"; rm "$VXK_AT_DEVICE"
  vxk-handset: cannot link TMP/smd8, so vxk 8 does not reach this handset, only TMP/h4/at does: it is a plain file, such as vxk 8 leaves where no handset runs; remove it with: rm TMP/smd8
  mine
  $ mkfifo "$VXK_AT_DEVICE"; boot; complaint; halt; test -p "$VXK_AT_DEVICE"; rm "$VXK_AT_DEVICE"
  vxk-handset: cannot link TMP/smd8, so vxk 8 does not reach this handset, only TMP/h5/at does: it is there and is not a link
  $ ln -s /dev/null "$VXK_AT_DEVICE"; boot; complaint; halt; device; rm "$VXK_AT_DEVICE"
  vxk-handset: cannot link TMP/smd8, so vxk 8 does not reach this handset, only TMP/h6/at does: it is a link to /dev/null
  /dev/null
  $ VXK_AT_DEVICE="$CRAMTMP/none/smd8"; boot; complaint; show at | grep device
  vxk-handset: cannot link TMP/none/smd8, so vxk 8 does not reach this handset, only TMP/h7/at does: No such file or directory
    device    none
