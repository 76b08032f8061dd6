// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors
#include "tests/docs/till.h"

#include <array>
#include <cstdlib>
#include <iterator>
#include <map>

#include "quorvel/quorvel.hpp"

// What the pages show of the code stands here as it does there.
namespace till {

namespace {

using namespace quorvel;
using namespace std::chrono_literals;

// So that the same bytes cross the line every day.
constexpr DateTime kNow{.year = 26, .month = 7, .day = 14, .hour = 9, .minute = 15, .second = 2};
// A working key of 16 bytes under a master key, and a block to encipher.
constexpr std::array<uint8_t, 16> kWorkingKey{0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                                              0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
constexpr std::array<uint8_t, 8> kBlock{0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0};

// Statuses that are not OK stand on the pages, too.
template <typename Value>
void seen(const Answer<Value>&) {}

void load_image(Session& session, std::string_view name) { seen(Media::put(session, name, 1, kBlock)); }

auto read_chip(Session& session) {
    return session.run(Gcx{.amount = 1234, .currency = 986, .contactless = true, .when = kNow}, 60s).require();
}

auto read_card(Session& session) {
    return session.run(Gcr{.amount = 1234, .tables_version = "TABLES0001", .contactless = true, .when = kNow}, 60s)
        .require();
}

void go_on(Session& session) {
    const auto card = read_chip(session);
    seen(session.run(Gox{.acquirer = card.acquirer().value(), .amount = 1234}, 60s));
}

void cex(Session& session) {
    const auto event = session.run(
        Cex{.keys = true, .stripe = true, .chip = Cex::Chip::inserted, .timeout = 30s, .pan_mask = PanMask{6, 4}}, 60s);
    if (event.ok() && event->event == CexEvent::stripe) { seen(event); }
}

void chp(Session& session) {
    // Power on, SELECT, power off.
    const uint8_t select[] = {0x00, 0xA4, 0x04, 0x00, 0x07, 0xA0, 0x00, 0x00, 0x00, 0x03, 0x10, 0x10};
    const auto reset = session.run(Chp{.slot = 0, .operation = 1}, 10s);
    const auto answer = session.run(Chp{.slot = 0, .operation = 2, .command = select}, 10s);
    seen(session.run(Chp{.slot = 0, .operation = 0}, 10s));
    seen(reset);
    seen(answer);
}

void chp_pin(Session& session) {
    seen(session.run(Chp{.slot = 0, .operation = 1}, 10s));
    const uint8_t verify[] = {0x00, 0x20, 0x00, 0x80};
    const auto answer =
        session.run(Chp{.slot = 0, .operation = 3, .command = verify, .pin_format = 2, .text = "PIN"}, 60s);
    seen(answer);
}

void cke(Session& session) {
    const auto event = session.run(Cke{.keys = true, .stripe = true, .chip = ABECS_CMD_CKE_ICC_CHECK_TYPE_2}, 60s);
    if (event.ok() && event->event == CkeAnswer::Event::key) { seen(event); }
}

void clo(Session& session) { session.close("THANK YOU"); }

void clx(Session& session) { session.close("THANK YOU\rPLEASE COME AGAIN"); }

void clx_image(Session& session) {
    load_image(session, "logo");
    session.close("", "logo");
}

void cng(Session& session) {
    read_chip(session);
    // Another amount, before GOX: tag 9F02, 6 bytes.
    const uint8_t amount[] = {0x9F, 0x02, 0x06, 0x00, 0x00, 0x00, 0x00, 0x20, 0x00};
    const auto changed = session.run(Cng{amount});
    seen(changed);
}

void dex(Session& session) {
    const auto shown = session.run(Dex{"TEA         2,00\rCAKE        3,50"});
    seen(shown);
}

void dmf(Session& session) {
    load_image(session, "logo");
    load_image(session, "logo2");
    const std::string_view names[] = {"logo", "logo2"};
    const auto deleted = Media::remove(session, names);
    seen(deleted);
}

void dmf_missing(Session& session) {
    const std::string_view names[] = {"logo"};
    seen(Media::remove(session, names));
}

void dsi(Session& session) {
    load_image(session, "logo");
    const auto shown = Media::show(session, "logo");
    seen(shown);
}

void dsp(Session& session) {
    const auto shown = session.run(Dsp{"   TOTAL 12,34"});
    seen(shown);
}

void dwk(Session& session) {
    // The published test key at index 0 of the virtual PIN pad.
    const MasterKey master(ABECS_MK_TYPE_TDES, 0, Secret(Bytes(kWorkingKey)));
    const auto key = session.run(Dwk1{.master_key = master});
    seen(key);
}

void dwk_rsa(Session& session) {
    const auto key = session.run(Dwk2{});
    seen(key);
}

void ebx(Session& session) {
    const auto enciphered = session.run(Ebx{.data = kBlock, .method = DataMethod::dukpt_dat3_cbc, .key_index = 0});
    seen(enciphered);
}

void ebx_no_key(Session& session) { seen(session.run(Ebx{.data = kBlock, .key_index = 42})); }

void enb(Session& session) {
    const auto enciphered = session.run(Enb{.method = 1, .key_index = 0, .working_key = kWorkingKey, .data = kBlock});
    seen(enciphered);
}

void fcx(Session& session) {
    go_on(session);
    const auto last = session.run(Fcx{.response_code = "00", .tags = Tags{0x9F26, 0x95}}, 30s).require();
    const bool approved = last.decision == FcxAnswer::Decision::approved;
    static_cast<void>(approved);
}

void fcx_unreachable(Session& session) {
    go_on(session);
    seen(session.run(Fcx{.tags = Tags{0x8A}}, 30s));
}

void fnc(Session& session) {
    const auto card = read_card(session);
    seen(session.run(Goc{.acquirer = card.acquirer, .amount = 1234}, 60s));
    const uint8_t tags[] = {0x9F, 0x26, 0x95};
    const auto last = session.run(Fnc{.response_code = "00", .tags = tags});
    seen(last);
}

void gcd(Session& session) {
    const auto typed = session.run(Gcd{.prompt = 1, .min_digits = 4, .max_digits = 6, .timeout = 60s}, 70s);
    seen(typed);
}

void gcr(Session& session) {
    const auto card =
        session.run(Gcr{.amount = 1234, .tables_version = "TABLES0001", .contactless = true, .when = kNow}, 60s);
    seen(card);
}

void gcr_other_tables(Session& session) {
    seen(session.run(Gcr{.amount = 1234, .tables_version = "TABLES0002", .when = kNow}, 60s));
}

void gcx(Session& session) {
    const auto card = session.run(Gcx{.amount = 1234,
                                      .currency = 986,
                                      .type = 0x00,
                                      .contactless = true,
                                      .pan_mask = PanMask{6, 4},
                                      .tags = Tags{0x82, 0x9F36},
                                      .timeout = 60s,
                                      .when = kNow},
                                  70s);
    seen(card);
}

void gcx_plain(Session& session) {
    seen(session.run(Gcx{.amount = 1234, .pan_mask = PanMask{6, 4}, .timeout = 60s, .when = kNow}, 70s));
}

void gdu(Session& session) {
    const auto serial = session.run(Gdu{.method = Gdu::Method::tdes, .index = 0});
    seen(serial);
}

void ged(Session& session) {
    read_chip(session);
    const auto data = session.run(Ged{{0x82, 0x84, 0x9F1A}});
    seen(data);
}

void ged_early(Session& session) { seen(session.run(Ged{{0x82}})); }

void gen_keys(Session& session) {
    // Triple DES DUKPT keys for data, indexes 0 to 9.
    const auto keys = session.run(GenKeys{.type = 3, .use = 1, .first = 0, .last = 9});
    seen(keys);
}

void gen_card_data(Session& session) {
    read_chip(session);
    const auto data = session.run(GenCardData{{0x82, 0x9F36}});
    seen(data);
}

void gen_encrypt(Session& session) {
    const auto enciphered = session.run(GenEncrypt{.key_index = 0, .data = kBlock});
    seen(enciphered);
}

void gen_power(Session& session) {
    const auto state = session.run(GenPower{.operation = ABECS_CMD_GEN_04_01_OPER_1, .slot = 0});
    seen(state);
}

void gen_apdu(Session& session) {
    seen(session.run(GenPower{}));
    const uint8_t name[] = {0xA0, 0x00, 0x00, 0x00, 0x03, 0x10, 0x10};
    const auto answer = session.run(GenApdu{.slot = 0, .header = {0x00, 0xA4, 0x04, 0x00}, .data = name});
    seen(answer);
}

void gen_pin(Session& session) {
    seen(session.run(GenPower{}));
    const auto answer =
        session.run(GenPin{.slot = 0, .header = {0x00, 0x20, 0x00, 0x80}, .format = '2', .text = "PIN"}, 60s);
    seen(answer);
}

void gen_chip_data(Session& session) {
    const auto data = session.run(GenChipData{{0x82}});
    seen(data);
}

void gin(Session& session) {
    const auto who = session.run(Gin{}).require();
    const bool takesContactless = who.contactless;
    static_cast<void>(takesContactless);
}

void gin_acquirer(Session& session) {
    const auto about = session.run(Gin{.acquirer = 4});
    seen(about);
}

void gix(Session& session) {
    const int32_t ids[] = {ABECS_CMD_GIX_ID_PP_SERNUM, ABECS_CMD_GIX_ID_PP_DSPTXTSZ, ABECS_CMD_GIX_ID_PP_TABVER0};
    const Items items = session.run(Gix{ids}).require();
    const auto serial = items.text(ABECS_CMD_GIX_ID_PP_SERNUM);
    static_cast<void>(serial);
}

void gky(Session& session) {
    const auto key = session.run(Gky{}, 60s);
    const bool second = key.ok() && key.value() == Key::f2;
    static_cast<void>(second);
}

void goc(Session& session) {
    const auto card = read_card(session);
    const auto first = session.run(Goc{.acquirer = card.acquirer,
                                       .amount = 1234,
                                       .method = PinMethod::dukpt_tdes,
                                       .risk = Goc::Risk{.floor_limit = 5000},
                                       .tags = Tags{0x9F26, 0x95}},
                                   60s);
    seen(first);
}

void gox(Session& session) {
    const auto card = read_chip(session);
    const auto first = session
                           .run(Gox{.acquirer = card.acquirer().value(),
                                    .pin_method = PinMethod::dukpt_tdes,
                                    .key_index = 0,
                                    .amount = 1234,
                                    .tags = Tags{0x9F26, 0x95},
                                    .timeout = 60s},
                                70s)
                           .require();
    const bool ask = first.decision == GoxAnswer::Decision::online;
    static_cast<void>(ask);
}

void gox_card_gone(Session& session) {
    const auto card = read_chip(session);
    seen(session.run(Gox{.acquirer = card.acquirer().value(), .amount = 1234}, 60s));
}

void gpn(Session& session) {
    const Gpn::Entry entries[] = {{.min_digits = 4, .max_digits = 6, .text = "ENTER THE PIN"}};
    const auto pin = session.run(Gpn{.key_index = 0, .pan = "4111111111111111", .entries = entries}, 60s);
    seen(pin);
}

void gtk(Session& session) {
    seen(session.run(Gcx{.amount = 1234, .when = kNow}, 60s));
    const auto tracks = session.run(Gtk{.tracks = "0100"});
    seen(tracks);
}

void gtk_enciphered(Session& session) {
    seen(session.run(Gcx{.amount = 1234, .when = kNow}, 60s));
    const auto tracks =
        session.run(Gtk{.tracks = "0101", .method = DataMethod::dukpt_dat3_ecb, .open_digits = 6, .key_index = 0});
    seen(tracks);
}

void gts(Session& session) {
    const auto version = Tables::version(session, 0);
    seen(version);
}

void lmf(Session& session) {
    load_image(session, "logo");
    load_image(session, "logo2");
    const auto names = Media::list(session);
    seen(names);
}

void media(Session& session) {
    const auto loaded = Media::put(session, "logo", 1, kBlock);
    seen(loaded);
}

void mli_wrong_type(Session& session) { seen(session.run(Mli{.file = "logo", .size = 8, .crc = 0, .type = 9})); }

void mle_wrong_crc(Session& session) {
    seen(session.run(Mli{.file = "logo", .size = 8, .crc = 0x1234, .type = 1}));
    seen(session.run(Mlr{kBlock}));
    seen(session.run(Mle{}));
}

void mnu(Session& session) {
    const std::string_view drinks[] = {"TEA", "COFFEE"};
    const auto choice = session.run(Mnu{.options = drinks, .title = "DRINK", .timeout = 30s}, 40s);
    seen(choice);
}

void opn(Session&) {}

void rmc(Session& session) {
    const auto gone = session.run(Rmc{"TAKE YOUR CARD"}, 60s);
    seen(gone);
}

void tables(Session& session) {
    Tables all;
    all.add("0561030107A000000003101000000000000000000001VISA CREDITO");
    all.add("0541030207A000000004101000000000000000000001MASTERCARD");
    const auto loaded = all.load(session, 0, "2026010101");
    seen(loaded);
}

void tlr_alone(Session& session) { seen(session.run(Tlr{"008103AB"})); }

const std::map<std::string, void (*)(Session&)> kExchanges{
    {"cex", cex},
    {"chp", chp},
    {"chp, a PIN", chp_pin},
    {"cke", cke},
    {"clo", clo},
    {"clx", clx},
    {"clx, an image", clx_image},
    {"cng", cng},
    {"dex", dex},
    {"dmf", dmf},
    {"dmf, refused", dmf_missing},
    {"dsi", dsi},
    {"dsp", dsp},
    {"dwk", dwk},
    {"dwk, over RSA", dwk_rsa},
    {"ebx", ebx},
    {"ebx, refused", ebx_no_key},
    {"enb", enb},
    {"fcx", fcx},
    {"fcx, no answer", fcx_unreachable},
    {"fnc", fnc},
    {"gcd", gcd},
    {"gcr", gcr},
    {"gcr, other tables", gcr_other_tables},
    {"gcx, a chip", gcx},
    {"gcx, a mute chip", gcx_plain},
    {"gcx, a stripe", gcx_plain},
    {"gdu", gdu},
    {"ged", ged},
    {"ged, too early", ged_early},
    {"gen, 02/K3", gen_keys},
    {"gen, 03/02", gen_card_data},
    {"gen, 03/03", gen_encrypt},
    {"gen, 04/01", gen_power},
    {"gen, 04/02", gen_apdu},
    {"gen, 04/03", gen_pin},
    {"gen, 04/04", gen_chip_data},
    {"gin", gin},
    {"gin, an acquirer", gin_acquirer},
    {"gix", gix},
    {"gky", gky},
    {"goc", goc},
    {"gox", gox},
    {"gox, the card gone", gox_card_gone},
    {"gpn", gpn},
    {"gtk", gtk},
    {"gtk, enciphered", gtk_enciphered},
    {"gts", gts},
    {"lmf", lmf},
    {"mle", media},
    {"mle, damaged", mle_wrong_crc},
    {"mli", media},
    {"mli, refused", mli_wrong_type},
    {"mlr", media},
    {"mnu", mnu},
    {"opn", opn},
    {"opn, encrypted", opn},
    {"rmc", rmc},
    {"tle", tables},
    {"tli", tables},
    {"tlr", tables},
    {"tlr, refused", tlr_alone},
};

}  // namespace

std::vector<std::string> exchanges() {
    std::vector<std::string> names;
    names.reserve(kExchanges.size());
    for (const auto& each : kExchanges) { names.push_back(each.first); }
    return names;
}

void play(const std::string& exchange, const std::string& port) {
    Link link(port);
    auto session = link.open(exchange == "opn, encrypted" ? secure : plain);
    kExchanges.at(exchange)(session);
}

}  // namespace till
