The UIM service as the stock QMI client of the field reads it.

  $ . "$TESTDIR/../e2e/setup.sh"
  $ uim() { qmicli -d qrtr://1 "$@" 2>&1 | expand | sed 's/ *$//'; }
  $ export VXK_HANDSET_DIR=$CRAMTMP/handset
  $ echo '{"cards": {"slots": [{"pin_enabled": true}, {}]}}' > p.json
  $ vxk-handset serve --bus qrtr --profile p.json > ready & handset=$!
  $ eventually grep ready ready

Files, as long as the card's conditions are met.

  $ uim --uim-read-record=record-number=1,record-length=32,file=0x3F00-0x2F00 | sed '1,/Read result/d'
          61:18:4F:10:A0:00:00:00:87:10:02:FF:FF:FF:FF:89:00:00:01:00:50:04:55:53:49:4D:
          FF:FF:FF:FF:FF:FF
  
  $ uim --uim-get-file-attributes=0x3F00,0x2FE2 | grep -E 'size|type|Read|Write|Raw'
          File size: 10
          File type: transparent
          Record size: 0
          Read security attributes: (always) none
          Write security attributes: (single) adm
          Raw:    62:17:82:02:41:21:83:02:2F:E2:8A:01:05:8B:03:2F:06:01:80:02:00:0A:88:01:10
  $ uim --uim-read-transparent=0x3F00,0x7FFF,0x6F07
  error: couldn't read transparent file from the UIM: QMI protocol error (82): 'AccessDenied'
  Card result:
          SW1: '0x69'
          SW2: '0x82'

Slots, and who is told when one is switched.

  $ qmicli -d qrtr://1 --uim-monitor-slot-status > seen 2>&1 & monitor=$!
  $ eventually grep register_events "$VXK_HANDSET_DIR/log/wire.log"
  $ uim --uim-switch-slot=2; uim --uim-switch-slot=2
  [qrtr://1] Successfully switched slots
  error: couldn't switch slots: QMI protocol error (26): 'NoEffect'
  $ told() { sed -n '/Physical slot 3/,$p' seen | grep Protocol; }; eventually told; expand seen | grep -A4 -E 'slot [23]:'; kill $monitor
    Physical slot 2:
       Card status: present
       Slot status: active
      Logical slot: 2
             ICCID: 8900101000000000027
  --
    Physical slot 3:
       Card status: present
       Slot status: inactive
             ICCID: 8900101234567890120
          Protocol: uicc
  $ uim --uim-switch-slot=3
  [qrtr://1] Successfully switched slots

Power, state, and the rest.

  $ uim --uim-sim-power-off=2; uim --uim-get-card-status | grep -E 'GW|Slot|Card|Application state|PIN1 state'; uim --uim-sim-power-on=2
  [qrtr://1] Successfully performed SIM power off
          Primary GW:   slot '1', application '1'
          Secondary GW: session doesn't exist
  Slot [1]:
          Card state: 'present'
                  Application state: 'pin1-or-upin-pin-required'
                  PIN1 state: 'enabled-not-verified'
  Slot [2]:
          Card state: 'error: power-down (1)'
  [qrtr://1] Successfully performed SIM power on
  $ uim --uim-get-supported-messages | tr -d '\n'; echo
  [qrtr://1] Successfully got supported UIM messages:        0x0000        0x001E        0x0020        0x0021        0x0024        0x002A        0x002C        0x002E        0x002F        0x0030        0x0031        0x003B        0x003F        0x0042        0x0044        0x0046        0x0047        0x0065
  $ uim --uim-reset
  [qrtr://1] Successfully performed UIM service reset
