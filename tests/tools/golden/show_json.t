# JSON for scripts: every view at once, and an empty view.
$ tarvctl --region demo.bin show --json
{
  "schema": 1,
  "mds": [
    {
      "md": 1,
      "name": "Customer",
      "level": 5,
      "mas": 1,
      "meps": 2
    },
    {
      "md": 2,
      "name": "Provider",
      "level": 3,
      "mas": 1,
      "meps": 3
    },
    {
      "md": 3,
      "name": "Operator",
      "level": 7,
      "mas": 1,
      "meps": 1
    }
  ],
  "mas": [
    {
      "md": 1,
      "ma": 1,
      "name": "CustomerVPN-100",
      "ccmPeriod": 4,
      "components": [
        {
          "component": 1,
          "tagging": "C-VLAN",
          "vid": 100
        }
      ],
      "meps": 2,
      "mips": 1
    },
    {
      "md": 2,
      "ma": 2,
      "name": "Backbone-200",
      "ccmPeriod": 2,
      "components": [
        {
          "component": 2,
          "tagging": "S-VLAN",
          "vid": 200
        }
      ],
      "meps": 3,
      "mips": 1
    },
    {
      "md": 3,
      "ma": 3,
      "name": "Metro-VFI-7",
      "ccmPeriod": 4,
      "components": [
        {
          "component": 3,
          "tagging": "VFI",
          "vid": 7
        }
      ],
      "meps": 1,
      "mips": 0
    }
  ],
  "meps": [
    {
      "md": 1,
      "ma": 1,
      "mep": 1,
      "mepId": 101,
      "port": {
        "slot": 1,
        "port": 3
      },
      "maName": "CustomerVPN-100",
      "vid": 100,
      "tagging": "C-VLAN",
      "direction": "Down",
      "mac": "02:54:41:52:57:03"
    },
    {
      "md": 1,
      "ma": 1,
      "mep": 2,
      "mepId": 102,
      "port": {
        "lag": 5
      },
      "maName": "CustomerVPN-100",
      "vid": 100,
      "tagging": "C-VLAN",
      "direction": "Up",
      "mac": "02:54:41:52:56:06"
    },
    {
      "md": 2,
      "ma": 2,
      "mep": 3,
      "mepId": 201,
      "port": {
        "slot": 4,
        "port": 2
      },
      "maName": "Backbone-200",
      "vid": 200,
      "tagging": "S-VLAN",
      "direction": "Down",
      "mac": "02:54:41:52:5a:02"
    },
    {
      "md": 2,
      "ma": 2,
      "mep": 4,
      "mepId": 202,
      "port": {
        "slot": 3,
        "port": 7
      },
      "maName": "Backbone-200",
      "vid": 200,
      "tagging": "S-VLAN",
      "direction": "Up",
      "mac": "02:54:41:52:59:01"
    },
    {
      "md": 3,
      "ma": 3,
      "mep": 5,
      "mepId": 301,
      "port": {
        "slot": 1,
        "port": 4
      },
      "maName": "Metro-VFI-7",
      "vid": 7,
      "tagging": "VFI",
      "direction": "Down",
      "mac": "02:54:41:52:57:04"
    },
    {
      "md": 2,
      "ma": 2,
      "mep": 6,
      "mepId": 203,
      "port": {
        "lag": 6
      },
      "maName": "Backbone-200",
      "vid": 200,
      "tagging": "S-VLAN",
      "direction": "Down",
      "mac": "02:54:41:52:56:07"
    }
  ],
  "mips": [
    {
      "md": 1,
      "ma": 1,
      "mip": 1,
      "port": {
        "slot": 1,
        "port": 4
      },
      "maName": "CustomerVPN-100",
      "mac": "02:54:41:52:57:04"
    },
    {
      "md": 2,
      "ma": 2,
      "mip": 2,
      "port": {
        "lag": 6
      },
      "maName": "Backbone-200",
      "mac": "02:54:41:52:56:07"
    }
  ],
  "throughput": {
    "tests": [
      {
        "mep": {
          "md": 1,
          "ma": 1,
          "mep": 1,
          "mepId": 101,
          "port": {
            "slot": 1,
            "port": 3
          }
        },
        "test": 1,
        "enabled": true,
        "enableStatus": 2,
        "operandA": 2,
        "operandB": 125,
        "operandC": 4,
        "derived": 4
      },
      {
        "mep": {
          "md": 2,
          "ma": 2,
          "mep": 3,
          "mepId": 201,
          "port": {
            "slot": 4,
            "port": 2
          }
        },
        "test": 2,
        "enabled": false,
        "enableStatus": 1,
        "operandA": 100,
        "operandB": 10,
        "operandC": 1,
        "derived": 1
      }
    ],
    "anyEnabled": true,
    "history": [
      {
        "id": 1,
        "result": "1/1/1 test 1: 96.40 Mbit/s, frame loss 0.00 %"
      },
      {
        "id": 2,
        "result": "2/2/3 test 2: 9.87 Mbit/s, frame loss 1.25 %"
      }
    ]
  },
  "pm": [
    {
      "mep": {
        "md": 1,
        "ma": 1,
        "mep": 1,
        "mepId": 101,
        "port": {
          "slot": 1,
          "port": 3
        }
      },
      "session": 1,
      "maName": "CustomerVPN-100"
    },
    {
      "mep": {
        "md": 2,
        "ma": 2,
        "mep": 3,
        "mepId": 201,
        "port": {
          "slot": 4,
          "port": 2
        }
      },
      "session": 2,
      "maName": "Backbone-200"
    }
  ],
  "bwn": [
    {
      "mep": {
        "md": 1,
        "ma": 1,
        "mep": 1,
        "mepId": 101,
        "port": {
          "slot": 1,
          "port": 3
        }
      },
      "record": "01000000e803000002000000000000000000"
    },
    {
      "mep": {
        "md": 1,
        "ma": 1,
        "mep": 2,
        "mepId": 102,
        "port": {
          "lag": 5
        }
      },
      "record": "000000000000000000000000000000000000"
    },
    {
      "mep": {
        "md": 2,
        "ma": 2,
        "mep": 3,
        "mepId": 201,
        "port": {
          "slot": 4,
          "port": 2
        }
      },
      "record": "010000001027000001000000000000000000"
    },
    {
      "mep": {
        "md": 2,
        "ma": 2,
        "mep": 4,
        "mepId": 202,
        "port": {
          "slot": 3,
          "port": 7
        }
      },
      "record": "000000000000000000000000000000000000"
    },
    {
      "mep": {
        "md": 3,
        "ma": 3,
        "mep": 5,
        "mepId": 301,
        "port": {
          "slot": 1,
          "port": 4
        }
      },
      "record": "000000000000000000000000000000000000"
    },
    {
      "mep": {
        "md": 2,
        "ma": 2,
        "mep": 6,
        "mepId": 203,
        "port": {
          "lag": 6
        }
      },
      "record": "000000000000000000000000000000000000"
    }
  ],
  "alarms": {
    "meps": [
      {
        "index": 1,
        "mep": {
          "md": 1,
          "ma": 1,
          "mep": 2,
          "mepId": 102,
          "port": {
            "lag": 5
          }
        },
        "alarms": 5,
        "stored": 5,
        "bits": [
          0,
          2
        ],
        "text": "RDI received from MEP 12"
      },
      {
        "index": 3,
        "mep": {
          "md": 2,
          "ma": 2,
          "mep": 4,
          "mepId": 202,
          "port": {
            "slot": 3,
            "port": 7
          }
        },
        "alarms": 2,
        "stored": 6,
        "bits": [
          1
        ],
        "text": "CCMs from MEP 201 lost"
      }
    ],
    "pm": [
      {
        "index": 1,
        "mep": {
          "md": 1,
          "ma": 1,
          "mep": 1,
          "mepId": 101,
          "port": {
            "slot": 1,
            "port": 3
          }
        },
        "session": 1,
        "alarms": 0,
        "bits": [],
        "source": "S1,P3,Svid100,Dn,L5,Id101,MAID:Customer/CustomerVPN-100"
      },
      {
        "index": 2,
        "mep": {
          "md": 2,
          "ma": 2,
          "mep": 3,
          "mepId": 201,
          "port": {
            "slot": 4,
            "port": 2
          }
        },
        "session": 2,
        "alarms": 16,
        "bits": [
          4
        ],
        "source": "S4,P2,Svid200,Dn,L3,Id201,MAID:Provider/Backbone-200"
      }
    ],
    "hwBlock": "00000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
  }
}
[exit 0]
$ tarvctl --region empty.bin show pm --json
{
  "schema": 1,
  "pm": []
}
[exit 0]
