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

What a group refuses: its note, and its section of the help, without a look for the modem.

  $ refused() { for words; do vxk $words > refused; grep -m 1 . refused; vxk 0 | sed -n "/^${words%% *}:/p" | diff - <(grep -m 1 '^[0-9]*:' refused); done | uniq -c; }
  $ refused 3 4 5 "6 1" 7 "9 1" "10 3" 11 "11 3" "11 6"
       10 note: Too few parameters, Pls refer to the following cmd:
  $ refused "3 6" "3 -1" "4 0" "4 7" "5 7" "5 11" "5 -1"
        7 note: the second parameters is invalid, Pls refer to the following cmd:
  $ refused "6 6 1" "6 -1 1" "7 2" "7 -1" 8 "8 a b" "8 $(printf 'A%.0s' {1..101})" "10 0 4" "10 0 0" "11 4 2" "11 3 -1" "11 7" "11 -1 0"
        2 note: the second parameters(qmi_id) should be >= 0 && < 6
        1 invalid type = 2
        1 invalid type = -1
        2 note: The number of inputs should be 2, Pls refer to the following cmd:
        1 note: the second parameters length should <= 100, Pls refer to the following cmd:
        1 note: sub_mask(4) is invalid:
        1 note: sub_mask(0) is invalid:
        1 note: opt(2) is invalid:
        1 note: opt(-1) is invalid:
        1 invalid par_i = 7
        1 invalid par_i = -1
