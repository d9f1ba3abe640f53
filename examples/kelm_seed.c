/*
 * kelm-seed: a stand-in for the OAM controller on a development machine.
 *
 * Attaches "/kelm-data" read-write (creating it when it is missing) and
 * writes a small demo configuration into the region's MD, MaNet and MEP
 * tables, as the controller would keep them:
 *
 *   MD 1 "Customer"   MaNet 1/1 "CustomerVPN-100"
 *       MEP 1/1/1  id 101  slot 1 port 3      VLAN 100  Down
 *       MEP 1/1/2  id 102  LAG 5 (slot 2)     VLAN 100  Up
 *   MD 2 "Provider"   MaNet 2/2 "Backbone-200"
 *       MEP 2/2/3  id 201  slot 4 port 2      VLAN 200  Down
 *
 * Every other MD, MaNet and MEP slot is cleared, so running it again gives
 * the same region. "kelm-seed --remove" removes the region instead.
 * TARV_SHM_PREFIX selects a private copy of the region (see tarv_host.h).
 */
#define _POSIX_C_SOURCE 200809L

#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>

#include "platform/pcor.h"
#include "tarv_host.h"

#define REGION_NAME "/kelm-data"
#define REGION_SIZE 453075u

/* The tables this program writes: base offset in the region, entry size. */
#define MANET_DATA 368629u   /* 57-byte MaNet records, 128 slots */
#define MANET_MOID 375925u   /* 10-byte MaNet keys */
#define MD_DATA 377205u      /* 65-byte MD records, 128 slots */
#define MD_MOID 385525u      /* 6-byte MD keys */
#define MEP_DATA 386293u     /* 48-byte MEP records, 32 slots */
#define MEP_MOID 387829u     /* 14-byte MEP keys */
#define MEP_OLD_MOID 388277u /* 14-byte old MEP keys kept per MEP slot */
#define MANET_SIZE 57u
#define MANET_KEY 10u
#define MD_SIZE 65u
#define MD_KEY 6u
#define MEP_SIZE 48u
#define MEP_KEY 14u

#define CLASS_MD 531u
#define CLASS_MEP 532u
#define CLASS_MANET 574u

/* All values in the region are little-endian at any offset. */
static void put16(uint8_t* p, uint32_t v) {
    p[0] = (uint8_t)v;
    p[1] = (uint8_t)(v >> 8);
}
static void put32(uint8_t* p, uint32_t v) {
    put16(p, v & 0xFFFFu);
    put16(p + 2, v >> 16);
}
static void put_text(uint8_t* p, const char* text, size_t field) {
    size_t n = strlen(text);
    memcpy(p, text, n < field ? n : field);
}

/* An object with instance number n lives in slot n - 1 of its table. */
static void seed_md(uint8_t* region, uint32_t md, const char* name, uint32_t level) {
    uint8_t* record = region + MD_DATA + (md - 1u) * MD_SIZE;
    uint8_t* key = region + MD_MOID + (md - 1u) * MD_KEY;
    put16(key, CLASS_MD); /* key: wClass, lId1 = the MD */
    put32(key + 2, md);
    put_text(record + 4, name, 20); /* acMdName */
    put32(record + 48, level);      /* eMdLevel */
}

static void seed_manet(uint8_t* region, uint32_t md, uint32_t ma, const char* name, uint32_t ccm_period) {
    uint8_t* record = region + MANET_DATA + (ma - 1u) * MANET_SIZE;
    uint8_t* key = region + MANET_MOID + (ma - 1u) * MANET_KEY;
    put16(key, CLASS_MANET); /* key: wClass, lId1 = its MD, lId2 = the MaNet */
    put32(key + 2, md);
    put32(key + 6, ma);
    put_text(record + 4, name, 24); /* acMaName */
    put32(record + 50, ccm_period); /* dwCcmPeriod */
}

static void seed_mep(uint8_t* region, uint32_t md, uint32_t ma, uint32_t mep, uint32_t mep_id, uint8_t slot,
                     uint8_t port, uint32_t vid, uint32_t direction) {
    uint8_t* record = region + MEP_DATA + (mep - 1u) * MEP_SIZE;
    uint8_t* key = region + MEP_MOID + (mep - 1u) * MEP_KEY;
    put16(key, CLASS_MEP); /* key: wClass, lId1 = MD, lId2 = MaNet, lId3 = the MEP */
    put32(key + 2, md);
    put32(key + 6, ma);
    put32(key + 10, mep);
    /* The controller keeps the MEP's earlier MOID per slot; here it is the same. */
    memcpy(region + MEP_OLD_MOID + (mep - 1u) * MEP_KEY, key, MEP_KEY);
    put16(record + 0, mep_id);    /* wMepId */
    put32(record + 2, direction); /* eDirection: 1 Down, 2 Up */
    put16(record + 6, vid);       /* wVid */
    record[46] = slot;            /* bySlot: 2 is a LAG */
    record[47] = port;            /* byPort: the LAG id on slot 2 */
}

static int remove_region(void) {
    char object[TARV_HOST_SHM_NAME_MAX + 1];
    if (TarvHost_ShmObjectName(REGION_NAME, object, sizeof object) != 0 || shm_unlink(object) != 0) {
        perror("kelm-seed: shm_unlink");
        return 1;
    }
    printf("removed %s\n", object);
    return 0;
}

int main(int argc, char** argv) {
    if (argc == 2 && strcmp(argv[1], "--remove") == 0) return remove_region();
    if (argc != 1) {
        fprintf(stderr, "usage: kelm-seed [--remove]\n");
        return 2;
    }

    uint8_t* region = Pcor__OpenShm(REGION_NAME, REGION_SIZE, PCOR_SHM_READ_WRITE);
    if (region == NULL) {
        fprintf(stderr, "kelm-seed: cannot attach %s read-write\n", REGION_NAME);
        return 1;
    }

    /* Empty the three classes: keys first, so no reader sees a new key with
     * an old record. */
    memset(region + MEP_MOID, 0, 32u * MEP_KEY);
    memset(region + MEP_OLD_MOID, 0, 32u * MEP_KEY);
    memset(region + MANET_MOID, 0, 128u * MANET_KEY);
    memset(region + MD_MOID, 0, 128u * MD_KEY);
    memset(region + MEP_DATA, 0, 32u * MEP_SIZE);
    memset(region + MANET_DATA, 0, 128u * MANET_SIZE);
    memset(region + MD_DATA, 0, 128u * MD_SIZE);

    seed_md(region, 1, "Customer", 6);
    seed_md(region, 2, "Provider", 4);
    seed_manet(region, 1, 1, "CustomerVPN-100", 4);
    seed_manet(region, 2, 2, "Backbone-200", 2);
    seed_mep(region, 1, 1, 1, 101, 1, 3, 100, 1);
    seed_mep(region, 1, 1, 2, 102, 2, 5, 100, 2);
    seed_mep(region, 2, 2, 3, 201, 4, 2, 200, 1);

    char object[TARV_HOST_SHM_NAME_MAX + 1];
    if (TarvHost_ShmObjectName(REGION_NAME, object, sizeof object) != 0) strcpy(object, REGION_NAME);
    printf("seeded %s: 2 MDs, 2 MaNets, 3 MEPs\n", object);
    return 0;
}
