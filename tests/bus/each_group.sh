# Commands of every group, on the handset that the environment names. Without source lines.
for command in '1 1' '2 1' '3 1' '4 5 0 /a 1 2 3' '4 4 0 /a' '5 1' '5 5' '5 10 4 0' '6 3 1 2' '7 1 0' '8' '9 0 0' '9 21 1' '10 0' '11 4 1'; do
    echo "\$ vxk $command"
    vxk $command 2>&1 | sed 's/:[0-9]*\]/:#]/; s/0x[0-9a-f]\{6,\}$/ADDRESS/'
done
