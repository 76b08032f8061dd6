// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "wire/param_id.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string_view>

namespace quorvel::wire {

namespace {

struct Name {
    uint16_t id;
    std::string_view name;
};

constexpr std::array names{
    Name{spe::idList, "SPE_IDLIST"}, Name{0x0002, "SPE_MTHDPIN"},   Name{0x0003, "SPE_MTHDDAT"},
    Name{0x0004, "SPE_TAGLIST"},     Name{0x0005, "SPE_EMVDATA"},   Name{0x0006, "SPE_CEXOPT"},
    Name{0x0007, "SPE_TRACKS"},      Name{0x0008, "SPE_OPNDIG"},    Name{0x0009, "SPE_KEYIDX"},
    Name{0x000A, "SPE_WKENC"},       Name{0x000B, "SPE_MSGIDX"},    Name{0x000C, "SPE_TIMEOUT"},
    Name{0x000D, "SPE_MINDIG"},      Name{0x000E, "SPE_MAXDIG"},    Name{0x000F, "SPE_DATAIN"},
    Name{0x0010, "SPE_ACQREF"},      Name{0x0011, "SPE_APPTYPE"},   Name{0x0012, "SPE_AIDLIST"},
    Name{0x0013, "SPE_AMOUNT"},      Name{0x0014, "SPE_CASHBACK"},  Name{0x0015, "SPE_TRNDATE"},
    Name{0x0016, "SPE_TRNTIME"},     Name{0x0017, "SPE_GCXOPT"},    Name{0x0018, "SPE_GOXOPT"},
    Name{0x0019, "SPE_FCXOPT"},      Name{0x001A, "SPE_TRMPAR"},    Name{spe::dspMsg, "SPE_DSPMSG"},
    Name{0x001C, "SPE_ARC"},         Name{0x001D, "SPE_IVCBC"},     Name{spe::mfName, "SPE_MFNAME"},
    Name{0x001F, "SPE_MFINFO"},      Name{0x0020, "SPE_MNUOPT"},    Name{0x0021, "SPE_TRNTYPE"},
    Name{0x0022, "SPE_TRNCURR"},     Name{0x0023, "SPE_PANMASK"},   Name{0x0024, "SPE_PBKMOD"},
    Name{0x0025, "SPE_PBKEXP"},      Name{0x8001, "PP_SERNUM"},     Name{0x8002, "PP_PARTNBR"},
    Name{0x8003, "PP_MODEL"},        Name{0x8004, "PP_MNNAME"},     Name{0x8005, "PP_CAPAB"},
    Name{0x8006, "PP_SOVER"},        Name{0x8007, "PP_SPECVER"},    Name{0x8008, "PP_MANVERS"},
    Name{0x8009, "PP_APPVERS"},      Name{0x800A, "PP_GENVERS"},    Name{0x8010, "PP_KRNLVER"},
    Name{0x8011, "PP_CTLSVER"},      Name{0x8012, "PP_MCTLSVER"},   Name{0x8013, "PP_VCTLSVER"},
    Name{0x8014, "PP_AECTLSVER"},    Name{0x8015, "PP_DPCTLSVER"},  Name{0x8016, "PP_PUREVER"},
    Name{0x8020, "PP_DSPTXTSZ"},     Name{0x8021, "PP_DSPGRSZ"},    Name{0x8022, "PP_MFSUP"},
    Name{0x8030, "PP_MKDESP"},       Name{0x8031, "PP_MKDESD"},     Name{0x8032, "PP_MKTDESP"},
    Name{0x8033, "PP_MKTDESD"},      Name{0x8034, "PP_DKPTDESP"},   Name{0x8035, "PP_DKPTTDESP"},
    Name{0x8036, "PP_DKPTTDESD"},    Name{0x8040, "PP_EVENT"},      Name{0x8041, "PP_TRK1INC"},
    Name{0x8042, "PP_TRK2INC"},      Name{0x8043, "PP_TRK3INC"},    Name{0x8044, "PP_TRACK1"},
    Name{0x8045, "PP_TRACK2"},       Name{0x8046, "PP_TRACK3"},     Name{0x8047, "PP_TRK1KSN"},
    Name{0x8048, "PP_TRK2KSN"},      Name{0x8049, "PP_TRK3KSN"},    Name{0x804A, "PP_ENCPAN"},
    Name{0x804B, "PP_ENCPANKSN"},    Name{0x804C, "PP_KSN"},        Name{0x804D, "PP_VALUE"},
    Name{0x804E, "PP_DATAOUT"},      Name{0x804F, "PP_CARDTYPE"},   Name{0x8050, "PP_ICCSTAT"},
    Name{0x8051, "PP_AIDTABINFO"},   Name{0x8052, "PP_PAN"},        Name{0x8053, "PP_PANSEQNO"},
    Name{0x8054, "PP_EMVDATA"},      Name{0x8055, "PP_CHNAME"},     Name{0x8056, "PP_GOXRES"},
    Name{0x8057, "PP_PINBLK"},       Name{0x8058, "PP_FCXRES"},     Name{0x8059, "PP_ISRESULTS"},
    Name{pp::bigRand, "PP_BIGRAND"}, Name{0x805B, "PP_LABEL"},      Name{0x805C, "PP_ISSCNTRY"},
    Name{0x805D, "PP_CARDEXP"},      Name{0x805E, "PP_MFNAME"},     Name{0x8060, "PP_DEVTYPE"},
    Name{0x8061, "PP_ENCKEY"},       Name{pp::tlrMem, "PP_TLRMEM"}, Name{0x8063, "PP_ENCKRAND"},
};
static_assert(std::ranges::is_sorted(names, {}, &Name::id));

constexpr std::array families{
    Name{pp::ksnDesPin, "PP_KSNDESP"},
    Name{pp::ksnTdesPin, "PP_KSNTDESP"},
    Name{pp::ksnTdesData, "PP_KSNTDESD"},
    Name{pp::tabVer, "PP_TABVER"},
};

}  // namespace

std::string param_name(uint16_t id) {
    const auto* found = std::ranges::lower_bound(names, id, {}, &Name::id);
    if (found != names.end() && found->id == id) return std::string(found->name);
    for (const Name& family : families) {
        const int index = id - family.id;
        if (index >= 0 && index < pp::familySize) return fmt::format("{}{}", family.name, index);
    }
    return "parameter";
}

}  // namespace quorvel::wire
