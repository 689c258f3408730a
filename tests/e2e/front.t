Command lines that reach no modem.

  $ . "$TESTDIR/setup.sh"

Options 1 and 2 are listed in the help and do nothing.

  $ vxk 1 4 10
  Not support
  $ vxk 2
  Not support

Any other option shows the whole help, and the status is always 0. Its lines stand in the tables of the groups: here is their sum alone,
so that none changes unmeant.

  $ vxk > none; vxk 0 > zero; vxk 12 > high; vxk abc > text; vxk -1 > negative
  $ cmp none zero && cmp none high && cmp none text && cmp none negative
  $ wc -l < none; sha256sum < none
  95
  731af100ed9e4e1eaeae51674b8e66361cbd1dc66444aa74003e74918af7a92c  -
  $ head -3 none | folded
   | =========== blew: vexkit(vxk) cmd help ======================================================= | 1: nv option cmd
