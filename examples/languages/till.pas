{ SPDX-License-Identifier: MIT }
{ Copyright (c) 2026 the quorvel authors }
{ A small till in Free Pascal: till PORT [SECONDS]. It asks the PIN pad who it is, and waits for a key or a card. }
program Till;

{$mode objfpc}{$H+}{$packrecords c}
{$linklib quorvel0}

uses
  SysUtils;

const
  StatusOk = 0;
  StatusProcessing = -1;
  StatusNotification = -2;

type
  TLink = Pointer;
  TWho = record
    mnName: array[0..20] of Char;
    model, modelDetail: array[0..19] of Char;
    ctlsSup: Boolean;
    soVer: array[0..20] of Char;
    specVer: array[0..4] of Char;
    manVers: array[0..16] of Char;
    serNum: array[0..20] of Char;
  end;
  TEvent = record
    event: LongInt;
    case Integer of
      0: (key: LongInt);
      1: (tracks: array[0..227] of Byte);
  end;
  THandler = procedure(code: SmallInt; message: PChar); cdecl;

  EPinPad = class(Exception);

procedure kor_exception_set_uncaught_handler(handler: THandler); cdecl; external;
function abecs_comm_open(port: PChar): TLink; cdecl; external;
procedure abecs_comm_close(link: Pointer); cdecl; external;
procedure abecs_comm_send_can(link: TLink); cdecl; external;
function abecs_cmd_opn(link: TLink; secure: Boolean): LongInt; cdecl; external;
function abecs_cmd_gin(link: TLink; acquirer: Byte; out who: TWho): LongInt; cdecl; external;
function abecs_cmd_dsp(link: TLink; text: PChar): LongInt; cdecl; external;
procedure abecs_cmd_cke(link: TLink; keys, stripe: Boolean; chip, contactless: LongInt); cdecl; external;
function abecs_cmd_cke_response(link: TLink; out event: TEvent; notice: PChar): LongInt; cdecl; external;
function abecs_cmd_clo(link: TLink; text: PChar): LongInt; cdecl; external;

var
  RaisedCode: SmallInt;
  RaisedText: String;

{ What the library raises. It returns, and so does the function that raised: an exception must not pass through C. }
procedure Keep(code: SmallInt; message: PChar); cdecl;
begin
  if RaisedCode <> 0 then Exit;
  RaisedCode := code;
  RaisedText := String(message);
end;

{ After each call. }
procedure Check;
var
  Code: SmallInt;
begin
  if RaisedCode = 0 then Exit;
  Code := RaisedCode;
  RaisedCode := 0;
  raise EPinPad.CreateFmt('%d: %s', [Code, RaisedText]);
end;

procedure Demand(const command: String; status: LongInt);
begin
  Check;
  if status <> StatusOk then raise EPinPad.CreateFmt('%d: %s was refused', [status, command]);
end;

{ Whether there was an event before nobody came in time. }
function WaitForEvent(link: TLink; seconds: Integer; out event: TEvent): Boolean;
var
  Notice: array[0..32] of Char;
  Deadline: QWord;
  Status: LongInt;
begin
  abecs_cmd_cke(link, True, True, 2, -1);
  Check;
  Deadline := GetTickCount64 + 1000 * QWord(seconds);
  repeat
    Status := abecs_cmd_cke_response(link, event, Notice);
    Check;
    if Status = StatusNotification then
      WriteLn('notice: ', PChar(Notice))
    else if Status <> StatusProcessing then
    begin
      Demand('CKE', Status);
      Exit(True);
    end;
  until GetTickCount64 >= Deadline;
  abecs_comm_send_can(link);
  Check;
  Result := False;
end;

procedure Work(link: TLink; seconds: Integer);
var
  Who: TWho;
  Event: TEvent;
begin
  Demand('OPN', abecs_cmd_opn(link, False));
  Demand('GIN', abecs_cmd_gin(link, 0, Who));
  WriteLn(PChar(Who.mnName), ' ', PChar(Who.model), ' ', PChar(Who.serNum));
  Demand('DSP', abecs_cmd_dsp(link, 'KEY OR CARD'));
  if not WaitForEvent(link, seconds, Event) then
    WriteLn('nobody came')
  else if Event.event = 0 then
    WriteLn('key ', Event.key)
  else if Event.event = 1 then
    WriteLn('a stripe')
  else
    WriteLn('a chip');
end;

procedure Main(const port: String; seconds: Integer);
var
  Link: TLink;
  Done: Boolean = False;
begin
  Link := abecs_comm_open(PChar(port));
  Check;
  try
    Work(Link, seconds);
    Done := True;
  finally
    { What is raised here stays unsaid: it would hide what went wrong before. }
    if not Done then abecs_comm_send_can(Link);
    abecs_cmd_clo(Link, 'THANK YOU');
    abecs_comm_close(@Link);
    RaisedCode := 0;
  end;
end;

var
  Port: String = '/dev/ttyACM0';

begin
  kor_exception_set_uncaught_handler(@Keep);
  if ParamCount > 0 then Port := ParamStr(1);
  try
    Main(Port, StrToIntDef(ParamStr(2), 30));
  except
    on problem: Exception do
    begin
      WriteLn(StdErr, problem.Message);
      Halt(1);
    end;
  end;
end.
