The AT channel as the tool finds it, /dev/smd8. Where the machine allows it, the test has a /dev of its own; else it
must be root, and alone.

  $ cat > own_dev <<'END'
  > mount -t tmpfs -o mode=755 tmpfs /mnt && mkdir /mnt/pts && touch /mnt/null && mount --bind /dev/null /mnt/null &&
  >     mount -t devpts -o newinstance,ptmxmode=0666 devpts /mnt/pts && ln -s pts/ptmx /mnt/ptmx &&
  >     mount --rbind /mnt /dev
  > END
  $ ! unshare -rm sh own_dev 2>/dev/null || OWN_DEV=1 exec unshare -rm /bin/bash
  $ if [ -n "$OWN_DEV" ]; then sh own_dev; else [ "$(id -u)" -eq 0 ]; fi || exit 80
  $ . "$TESTDIR/setup.sh"
  $ unset VXK_AT_DEVICE
  $ device_is_free() { ! test -e /dev/smd8 && ! test -L /dev/smd8; }; eventually device_is_free

The receive thread prints when it likes, so lines are sorted.

  $ boot
  $ vxk 8 AT+CFUN? | sort
  At cmd you input: sscanf(1), len (8), AT+CFUN?
  Success to send at shell cmd
  The at channel is not opened, g_at_serial_fd 0
  The thread to receive data from serial is started
  Will create a thread to receive data from serial
  at shell cmd: echo "AT+CFUN?\r" > /dev/smd8
  echo, ret_sys: 0
  $ vxk 8 'AT+CGDCONT=1 second' | grep 'sscanf\|shell cmd' | folded
  At cmd you input: sscanf(1), len (12), AT+CGDCONT=1 | at shell cmd: echo "AT+CGDCONT=1\r" > /dev/smd8 | Success to send at shell cmd
  $ vxk 8 '   ' | grep 'sscanf\|shell cmd' | folded
  At cmd you input: sscanf(-1), len (0),  | at shell cmd: echo "\r" > /dev/smd8 | Success to send at shell cmd
  $ eventually test_count 'at - ->' 3
  $ grep -o 'at - -> .*' "$VXK_HANDSET_DIR/log/wire.log" | folded
  at - -> line="AT+CFUN?\r" | at - -> line="AT+CGDCONT=1\r" | at - -> line="\r"
  $ vxk 8 'AT+CPIN=\"1234\"' | grep -c Success; eventually test_count 'at - ->' 4
  1
  $ VXK_TRACE=trace vxk-check -- 8 'AT\$A=1' | cut -d ' ' -f 1; ls trace; eventually test_count 'at - ->' 5
  success:
  ls: * (glob)
  $ grep -o 'at - -> .*' "$VXK_HANDSET_DIR/log/wire.log" | tail -2
  at - -> line="AT+CPIN=\"1234\"\r"
  at - -> line="AT$A=1\r"
  $ show at | grep -v terminal | folded
  at |   device    /dev/smd8 |   lines     5 | 

A handset that was killed leaves a link that leads nowhere: the tool fails to send, and makes no file. The next
handset takes the link over.

  $ crash
  $ test -L /dev/smd8 && vxk 8 AT 2>/dev/null | grep -v thread | sort
  At cmd you input: sscanf(1), len (2), AT
  Fail to send at shell cmd
  The at channel is not opened, g_at_serial_fd 0
  at shell cmd: echo "AT\r" > /dev/smd8
  echo, ret_sys: 512
  $ test -e /dev/smd8
  [1]
  $ boot
  $ answer 8 AT | grep Success
  Success to send at shell cmd
  $ eventually test_count 'at - ->' 1
  $ halt
  $ eventually device_is_free
