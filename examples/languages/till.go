// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

// A small till in Go: till PORT [SECONDS]. It asks the PIN pad who it is, and waits for a key or a card.
package main

/*
#cgo LDFLAGS: -lquorvel0
#include <quorvel/quorvel.h>
#include <stdlib.h>

void keepRaised(int16_t code, char* message);
static inline void install_handler(void) {
    kor_exception_set_uncaught_handler((KorExceptionUncaughtHandler)keepRaised);
}
*/
import "C"

import (
	"encoding/binary"
	"fmt"
	"os"
	"runtime"
	"strconv"
	"time"
	"unsafe"
)

// What the library raises, or a status that the till cannot go on with.
type pinPadError struct {
	code int
	text string
}

func (e *pinPadError) Error() string { return fmt.Sprintf("%d: %s", e.code, e.text) }

var raised *pinPadError

// It returns, and so does the function that raised: a panic must not pass through C.
//
//export keepRaised
func keepRaised(code C.int16_t, message *C.char) {
	if raised == nil {
		raised = &pinPadError{int(code), C.GoString(message)}
	}
}

// After each call.
func check() error {
	if raised == nil {
		return nil
	}
	err := raised
	raised = nil
	return err
}

func demand(command string, status C.int32_t) error {
	if err := check(); err != nil {
		return err
	}
	if status != C.ABECS_RSP_STAT_ST_OK {
		return &pinPadError{int(status), command + " was refused"}
	}
	return nil
}

type pinPad struct{ link *C.AbecsComm }

func open(port string) (*pinPad, error) {
	name := C.CString(port)
	defer C.free(unsafe.Pointer(name))
	link := C.abecs_comm_open(name)
	return &pinPad{link}, check()
}

// What is raised here stays unsaid: it would hide what went wrong before.
func (p *pinPad) close(failed bool) {
	bye := C.CString("THANK YOU")
	defer C.free(unsafe.Pointer(bye))
	if failed {
		C.abecs_comm_send_can(p.link)
	}
	C.abecs_cmd_clo(p.link, bye)
	C.abecs_comm_close(&p.link)
	raised = nil
}

func (p *pinPad) show(text string) error {
	shown := C.CString(text)
	defer C.free(unsafe.Pointer(shown))
	return demand("DSP", C.abecs_cmd_dsp(p.link, shown))
}

// The event, or nothing when nobody came in time.
func (p *pinPad) waitForEvent(limit time.Duration) (*C.AbecsCmdCkeOut, error) {
	var event C.AbecsCmdCkeOut
	var notice [33]C.char
	C.abecs_cmd_cke(p.link, true, true, C.ABECS_CMD_CKE_ICC_CHECK_TYPE_2, C.ABECS_CMD_CKE_CTLS_CHECK_TYPE_NOT_SENT)
	if err := check(); err != nil {
		return nil, err
	}
	for deadline := time.Now().Add(limit); ; {
		status := C.abecs_cmd_cke_response(p.link, &event, &notice[0])
		if err := check(); err != nil {
			return nil, err
		}
		switch {
		case status == C.ABECS_RSP_STAT_ST_NOTIFICATION:
			fmt.Println("notice:", C.GoString(&notice[0]))
		case status != C.ABECS_RSP_STAT_ST_PROCESSING:
			return &event, demand("CKE", status)
		case time.Now().After(deadline):
			C.abecs_comm_send_can(p.link)
			return nil, check()
		}
	}
}

func (p *pinPad) work(limit time.Duration) error {
	if err := demand("OPN", C.abecs_cmd_opn(p.link, false)); err != nil {
		return err
	}
	// A union is bytes in Go: the manufacturer, the model and, from the 106th on, the serial number.
	var who C.AbecsCmdGinOut
	if err := demand("GIN", C.abecs_cmd_gin(p.link, 0, &who)); err != nil {
		return err
	}
	text := func(at int) string { return C.GoString((*C.char)(unsafe.Pointer(&who[at]))) }
	fmt.Println(text(0), text(21), text(105))
	if err := p.show("KEY OR CARD"); err != nil {
		return err
	}
	event, err := p.waitForEvent(limit)
	switch {
	case err != nil:
		return err
	case event == nil:
		fmt.Println("nobody came")
	case event.event == C.ABECS_CMD_CKE_EVENT_KEY:
		fmt.Println("key", binary.LittleEndian.Uint32(event.anon0[:]))
	case event.event == C.ABECS_CMD_CKE_EVENT_MAGNETIC_CARD:
		fmt.Println("a stripe")
	default:
		fmt.Println("a chip")
	}
	return nil
}

func run(port string, seconds int) error {
	// All links of a process are used by one thread at a time.
	runtime.LockOSThread()
	C.install_handler()
	pad, err := open(port)
	if err != nil {
		return err
	}
	err = pad.work(time.Duration(seconds) * time.Second)
	pad.close(err != nil)
	return err
}

func main() {
	port, seconds := "/dev/ttyACM0", 30
	if len(os.Args) > 1 {
		port = os.Args[1]
	}
	if len(os.Args) > 2 {
		seconds, _ = strconv.Atoi(os.Args[2])
	}
	if err := run(port, seconds); err != nil {
		fmt.Fprintln(os.Stderr, err)
		os.Exit(1)
	}
}
