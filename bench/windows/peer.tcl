# The windows of windows.c in Tk: wish peer.tcl open|lines|frames|resize COUNT
proc milliseconds {} { expr {[clock microseconds] / 1000.0} }
proc median {values} { lindex [lsort -real $values] [expr {[llength $values] / 2}] }

proc two_hundred {w} {
    toplevel $w
    wm title $w "Two hundred"
    text $w.notes -width 60 -height 2
    grid $w.notes -columnspan 10 -sticky nsew
    for {set i 0} {$i < 100} {incr i} {
        global value$i
        set value$i [expr {$i % 3 == 2 ? "" : 0}]
        label $w.l$i -text "Field $i"
        entry $w.e$i -width 8 -textvariable value$i
        set row [expr {1 + $i / 5}]
        set column [expr {2 * ($i % 5)}]
        grid $w.l$i -row $row -column $column -sticky w
        grid $w.e$i -row $row -column [expr {$column + 1}] -sticky ew
    }
    for {set i 0} {$i < 50} {incr i} {
        button $w.b$i -text "Do $i" -command {}
        grid $w.b$i -row [expr {21 + $i / 10}] -column [expr {$i % 10}]
    }
    for {set i 0} {$i < 50} {incr i} {
        checkbutton $w.c$i -text "Mark $i" -variable mark$i
        grid $w.c$i -row [expr {26 + $i / 10}] -column [expr {$i % 10}]
    }
    grid columnconfigure $w {1 3 5 7 9} -weight 1
    grid rowconfigure $w 0 -weight 1
    # The picture is there when the server has done what it was asked, not only been asked.
    tkwait visibility $w
    update
    winfo pointerxy $w
}

proc open_windows {count} {
    set times {}
    for {set i 0} {$i < $count} {incr i} {
        set begin [milliseconds]
        two_hundred .w
        lappend times [expr {[milliseconds] - $begin}]
        destroy .w
        update
    }
    puts "first [lindex $times 0]\nlater [median [lrange $times 1 end]]"
}

proc resize {count} {
    two_hundred .w
    set times {}
    for {set i 0} {$i < $count} {incr i} {
        set begin [milliseconds]
        wm geometry .w [expr {1000 + ($i % 2 ? $i : -$i)}]x[expr {900 + $i}]
        update
        winfo pointerxy .w
        lappend times [expr {[milliseconds] - $begin}]
    }
    puts "resize [median $times]"
}

proc open_close {count} {
    set times {}
    for {set i 0} {$i < $count} {incr i} {
        set begin [milliseconds]
        toplevel .w
        pack [label .w.l -text Area] [entry .w.e -textvariable area] [button .w.b -text OK]
        tkwait visibility .w
        update
        destroy .w
        update
        lappend times [expr {[milliseconds] - $begin}]
    }
    puts "open-close [median $times]"
}

# A variable that 20 boxes show one each is set, as fast as it goes.
proc updates {count} {
    for {set i 0} {$i < 20} {incr i} {
        global value$i
        set value$i 0
        grid [entry .e$i -width 8 -textvariable value$i] -row [expr {$i / 5}] -column [expr {$i % 5}]
    }
    update
    set begin [milliseconds]
    for {set i 0} {$i < $count} {incr i} {
        incr value[expr {$i % 20}]
        if {$i % 100 == 0} update
    }
    update
    puts "changed [expr {$count / ([milliseconds] - $begin) * 1000}]"
}

proc resident {} {
    set file [open /proc/self/status]
    regexp {VmRSS:\s+(\d+)} [read $file] all kilobytes
    close $file
    expr {$kilobytes * 1024.0}
}

proc lines {count} {
    pack [text .t -width 100 -height 40]
    update
    set all {}
    for {set i 0} {$i < 100} {incr i} {
        lappend all [format "%8d a line of a run's output, %8.3f of it\n" $i [expr {$i * 0.01}]]
    }
    set before [resident]
    set begin [milliseconds]
    set bytes 0
    for {set i 0} {$i < $count} {incr i} {
        set line [lindex $all [expr {$i % 100}]]
        .t insert end $line
        incr bytes [string length $line]
        if {$i % 1000 == 0} { .t see end; update }
    }
    .t see end
    update
    puts "lines [expr {$count / ([milliseconds] - $begin) * 1000}]"
    puts "line-bytes [expr {([resident] - $before - $bytes) / $count}]"
}

proc frames {count} {
    wm geometry . 1920x1080
    pack [text .t] -expand 1 -fill both
    update
    set times {}
    for {set i 0} {$i < $count} {incr i} {
        set page {}
        for {set row 0} {$row < 80} {incr row} {
            for {set column 0} {$column < 230} {incr column} {
                append page [format %c [expr {33 + ($row * 7 + $column * 3 + $i) % 90}]]
            }
            append page \n
        }
        .t replace 1.0 end $page
        set begin [milliseconds]
        update
        winfo pointerxy .
        lappend times [expr {[milliseconds] - $begin}]
    }
    puts "frame [median $times]"
}

set count [lindex $argv 1]
switch [lindex $argv 0] {
    open { wm withdraw .; open_windows $count }
    resize { wm withdraw .; resize $count }
    open-close { wm withdraw .; open_close $count }
    updates { updates $count }
    lines { lines $count }
    frames { frames $count }
}
exit
