#!/usr/bin/env luajit
-- SPDX-License-Identifier: MIT
-- Copyright (c) 2026 the quorvel authors
-- A small till in LuaJIT: till.lua PORT [SECONDS]. It asks the PIN pad who it is, and waits for a key or a card.
local ffi = require("ffi")
-- The library calls the handler while it is called itself, which compiled code does not allow.
jit.off()

ffi.cdef [[
typedef struct AbecsComm AbecsComm;
typedef void (*KorExceptionUncaughtHandler)(int16_t error, const char* message);
typedef struct { char mnName[21], model[20], modelDetail[20]; bool ctlsSup; char soVer[21], specVer[5], manVers[17],
                 serNum[21]; } Who;
typedef struct { int32_t event; union { int32_t key; char tracks[228]; }; } Event;

void kor_exception_set_uncaught_handler(KorExceptionUncaughtHandler handler);
AbecsComm* abecs_comm_open(const char* port);
void abecs_comm_close(AbecsComm** link);
void abecs_comm_send_can(AbecsComm* link);
int32_t abecs_cmd_opn(AbecsComm* link, bool secure);
int32_t abecs_cmd_gin(AbecsComm* link, uint8_t acquirer, Who* out);
int32_t abecs_cmd_dsp(AbecsComm* link, const char* text);
void abecs_cmd_cke(AbecsComm* link, bool keys, bool stripe, int32_t chip, int32_t contactless);
int32_t abecs_cmd_cke_response(AbecsComm* link, Event* out, char* notice);
int32_t abecs_cmd_clo(AbecsComm* link, const char* text);
]]
local quorvel = ffi.load(os.getenv("QUORVEL_LIBRARY") or "libquorvel0.so.0")
local OK, PROCESSING, NOTIFICATION = 0, -1, -2

-- What the library raises. The handler returns, and so does the function that raised.
local raised
local function keep(code, message)
  raised = raised or { code = code, text = message ~= nil and ffi.string(message) or "" }
end
local handler = ffi.cast("KorExceptionUncaughtHandler", keep)
quorvel.kor_exception_set_uncaught_handler(handler)

local function call(name, ...)
  raised = nil
  local value = quorvel[name](...)
  if raised then error(raised, 0) end
  return value
end

local function demand(command, status)
  if status ~= OK then error({ code = status, text = command .. " was refused" }, 0) end
end

-- The event, or nothing when nobody came in time.
local function wait_for_event(link, seconds)
  local event, notice = ffi.new("Event"), ffi.new("char[33]")
  call("abecs_cmd_cke", link, true, true, 2, -1)
  local deadline = os.time() + seconds
  while true do
    local status = call("abecs_cmd_cke_response", link, event, notice)
    if status == NOTIFICATION then
      print("notice: " .. ffi.string(notice))
    elseif status ~= PROCESSING then
      demand("CKE", status)
      return event
    elseif os.time() >= deadline then
      call("abecs_comm_send_can", link)
      return nil
    end
  end
end

local function work(link, seconds)
  demand("OPN", call("abecs_cmd_opn", link, false))
  local who = ffi.new("Who")
  demand("GIN", call("abecs_cmd_gin", link, 0, who))
  print(ffi.string(who.mnName) .. " " .. ffi.string(who.model) .. " " .. ffi.string(who.serNum))
  demand("DSP", call("abecs_cmd_dsp", link, "KEY OR CARD"))
  local event = wait_for_event(link, seconds)
  if event == nil then
    print("nobody came")
  elseif event.event == 0 then
    print("key " .. event.key)
  else
    print(event.event == 1 and "a stripe" or "a chip")
  end
end

local function main(port, seconds)
  local link = ffi.new("AbecsComm*[1]")
  link[0] = call("abecs_comm_open", port)
  local done, problem = pcall(work, link[0], seconds)
  -- What goes wrong here does not hide what went wrong before.
  if not done then pcall(call, "abecs_comm_send_can", link[0]) end
  pcall(call, "abecs_cmd_clo", link[0], "THANK YOU")
  pcall(call, "abecs_comm_close", link)
  if not done then error(problem, 0) end
end

local done, problem = pcall(main, arg[1] or "/dev/ttyACM0", tonumber(arg[2] or 30))
if not done then
  io.stderr:write(type(problem) == "table" and problem.code .. ": " .. problem.text or tostring(problem), "\n")
  os.exit(1)
end
