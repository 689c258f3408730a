Command lines that reach no modem.

  $ . "$TESTDIR/setup.sh"

Options 1 and 2 are listed in the help and do nothing.

  $ vxk 1 4 10
  Not support
  $ vxk 2
  Not support

Any other option shows the whole help, and the status is always 0.

  $ vxk > none; vxk 0 > zero; vxk 12 > high; vxk abc > text; vxk -1 > negative
  $ cmp none zero && cmp none high && cmp none text && cmp none negative
  $ head -3 none
  
  =========== blew: vexkit(vxk) cmd help =======================================================
  1: nv option cmd
