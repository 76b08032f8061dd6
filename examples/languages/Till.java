// SPDX-License-Identifier: MIT
// Copyright (c) 2026 the quorvel authors

import com.sun.jna.Callback;
import com.sun.jna.Library;
import com.sun.jna.Memory;
import com.sun.jna.Native;
import com.sun.jna.Pointer;
import com.sun.jna.ptr.PointerByReference;

/** A small till in Java: Till PORT [SECONDS]. It asks the PIN pad who it is, and waits for a key or a card. */
public final class Till {
    /** The functions of libquorvel0 that it calls. C's bool is one byte. */
    interface Quorvel extends Library {
        interface Handler extends Callback {
            void raised(short code, String message);
        }

        void kor_exception_set_uncaught_handler(Handler handler);
        Pointer abecs_comm_open(String port);
        void abecs_comm_close(PointerByReference link);
        void abecs_comm_send_can(Pointer link);
        int abecs_cmd_opn(Pointer link, byte secure);
        int abecs_cmd_gin(Pointer link, byte acquirer, Pointer out);
        int abecs_cmd_dsp(Pointer link, String text);
        void abecs_cmd_cke(Pointer link, byte keys, byte stripe, int chip, int contactless);
        int abecs_cmd_cke_response(Pointer link, Pointer out, Pointer notice);
        int abecs_cmd_clo(Pointer link, String text);
    }

    /** What the library raises, or a status that the till cannot go on with. */
    static final class PinPadException extends Exception {
        private static final long serialVersionUID = 1L;

        PinPadException(int code, String text) {
            super(code + ": " + text);
        }
    }

    private static final int OK = 0;
    private static final int PROCESSING = -1;
    private static final int NOTIFICATION = -2;
    private static final byte YES = 1;
    private static final byte NO = 0;

    private final Quorvel quorvel = Native.load("quorvel0", Quorvel.class);
    // It returns, and so does the function that raised. Kept, because the library goes on calling it.
    private final Quorvel.Handler handler = this::keep;
    private PinPadException raised;
    private Pointer link;

    private Till() {
        quorvel.kor_exception_set_uncaught_handler(handler);
    }

    private void keep(short code, String message) {
        if (raised == null) {
            raised = new PinPadException(code, message);
        }
    }

    /** After each call. */
    private void check() throws PinPadException {
        PinPadException problem = raised;
        raised = null;
        if (problem != null) {
            throw problem;
        }
    }

    private void demand(String command, int status) throws PinPadException {
        check();
        if (status != OK) {
            throw new PinPadException(status, command + " was refused");
        }
    }

    /** The event, or null when nobody came in time. */
    private Memory waitForEvent(int seconds) throws PinPadException {
        Memory event = new Memory(232);
        Memory notice = new Memory(33);
        quorvel.abecs_cmd_cke(link, YES, YES, 2, -1);
        check();
        long deadline = System.nanoTime() + seconds * 1_000_000_000L;
        while (true) {
            int status = quorvel.abecs_cmd_cke_response(link, event, notice);
            check();
            if (status == NOTIFICATION) {
                System.out.println("notice: " + notice.getString(0));
            } else if (status != PROCESSING) {
                demand("CKE", status);
                return event;
            } else if (System.nanoTime() >= deadline) {
                quorvel.abecs_comm_send_can(link);
                check();
                return null;
            }
        }
    }

    private void work(int seconds) throws PinPadException {
        demand("OPN", quorvel.abecs_cmd_opn(link, NO));
        // The members one behind the other: the manufacturer, the model and, from the 106th byte on, the serial number.
        Memory who = new Memory(126);
        demand("GIN", quorvel.abecs_cmd_gin(link, (byte) 0, who));
        System.out.println(who.getString(0) + " " + who.getString(21) + " " + who.getString(105));
        demand("DSP", quorvel.abecs_cmd_dsp(link, "KEY OR CARD"));
        Memory event = waitForEvent(seconds);
        if (event == null) {
            System.out.println("nobody came");
        } else if (event.getInt(0) == 0) {
            System.out.println("key " + event.getInt(4));
        } else {
            System.out.println(event.getInt(0) == 1 ? "a stripe" : "a chip");
        }
    }

    private void run(String port, int seconds) throws PinPadException {
        link = quorvel.abecs_comm_open(port);
        check();
        boolean done = false;
        try {
            work(seconds);
            done = true;
        } finally {
            // What is raised here stays unsaid: it would hide what went wrong before.
            if (!done) {
                quorvel.abecs_comm_send_can(link);
            }
            quorvel.abecs_cmd_clo(link, "THANK YOU");
            quorvel.abecs_comm_close(new PointerByReference(link));
            raised = null;
        }
    }

    public static void main(String[] arguments) {
        String port = arguments.length > 0 ? arguments[0] : "/dev/ttyACM0";
        int seconds = arguments.length > 1 ? Integer.parseInt(arguments[1]) : 30;
        try {
            new Till().run(port, seconds);
        } catch (PinPadException problem) {
            System.err.println(problem.getMessage());
            System.exit(1);
        }
    }
}
