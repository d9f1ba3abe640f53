/*
 * tarv-client: a reading client as a switch process writes it.
 *
 * Attaches the OAM data region, lists every MEP with its placement, then
 * every MD. Exit status 0 when the region was there (even if it holds no
 * MEP), 1 when it could not be attached.
 */
#include <stdint.h>
#include <stdio.h>

#include "platform/pcor.h"
#include "tarv/tarv.h"

#define MAX_MDS 128u
#define MD_TRANSFER_SIZE (6u + TARV_MD_RECORD_SIZE) /* key, then record */

/* Keys and records are little-endian byte images. */
static unsigned le16(const uint8_t* p) { return (unsigned)p[0] | (unsigned)p[1] << 8; }
static unsigned long le32(const uint8_t* p) { return (unsigned long)le16(p) | (unsigned long)le16(p + 2) << 16; }

static int all_zero(const uint8_t* p, unsigned n) {
    while (n-- > 0)
        if (*p++ != 0) return 0;
    return 1;
}

static const char* direction_name(unsigned long eDirection) {
    if (eDirection == 1) return "Down";
    return eDirection == 2 ? "Up" : "unknown direction";
}

static void print_mep(const TARV_MOID* moid) {
    const uint8_t* key = (const uint8_t*)moid;
    uint8_t mep[TARV_MEP_RECORD_SIZE];
    Tarv__ReadMEP(*moid, mep);

    unsigned slot = mep[46], port = mep[47];
    printf("MEP Md %lu MaNet %lu Mep %lu: MEP id %u, slot/port %u/%u%s, VLAN %u, %s\n", le32(key + 2), le32(key + 6),
           le32(key + 10), le16(mep + 0), slot, port, slot == 2 ? " (LAG)" : "", le16(mep + 6),
           direction_name(le32(mep + 2)));
}

int main(void) {
    Tarv__Open();
    /* Tarv__Open reports a missing region only by its error trace; ask the
     * platform as well so that the exit status can say so too. */
    if (Pcor__OpenShm("/kelm-data", 453075, PCOR_SHM_READ_ONLY) == NULL) {
        fprintf(stderr, "tarv-client: the OAM data region is not there\n");
        return 1;
    }

    unsigned meps = 0;
    for (const TARV_MOID* moid = Tarv__MEPMoidIterator(NULL); moid != NULL; moid = Tarv__MEPMoidIterator(moid)) {
        print_mep(moid);
        ++meps;
    }
    printf("%u MEPs\n", meps);

    /* All MDs as one transfer list, ended by an all-zero key when shorter
     * than asked. */
    static uint8_t mds[MAX_MDS * MD_TRANSFER_SIZE];
    Tarv__GetConfig(TARV_CLASS_MD, mds, MAX_MDS);
    unsigned n = 0;
    for (; n < MAX_MDS; ++n) {
        const uint8_t* md = mds + n * MD_TRANSFER_SIZE;
        if (all_zero(md, 6)) break;
        const uint8_t* record = md + 6;
        printf("MD %lu: \"%.20s\", level code %lu\n", le32(md + 2), (const char*)record + 4, le32(record + 48));
    }
    printf("%u MDs\n", n);
    return 0;
}
