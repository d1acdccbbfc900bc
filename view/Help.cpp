#include "Arguments.h"

namespace velka::view {

std::string helpText() {
  return R"(Usage: velkaview [OPTION]... FILE
  or:  velkaview --list|--stats [OPTION]... FILE
  or:  velkaview --diff [--tone] [OPTION]... FILE FILE
  or:  velkaview --calibration NAME [--ppd FILE.ppd [--options TEXT]] [--output FILE.pdf]
  or:  velkaview --from FILE --ppd FILE.ppd [--options TEXT] [OPTION]...
  or:  velkaview --serve [FILE] --ppd FILE.ppd [--options TEXT] [OPTION]...
Draws the paper that a command stream prints. FILE - is standard input.

What to do
      --list             list the commands: offset, bytes, name, meaning
      --stats            tell what the stream holds, and how long it may print
      --diff             compare two streams on paper; white and pale: the same,
                         blue: only the first prints there, green: only the second,
                         magenta: both, but not with the same ink
      --tone             with --diff: compare the ink on fields of 2 mm, not dots
      --from FILE        print any document that lp takes through the system's filters
                         and ours, show that
      --save FILE        with --from: keep the stream
      --sheet NAME=A,B   with --from: page 1 with each value of an option, on one sheet;
                         also NAME=FROM..TO/STEP
      --by NAME=A,B      with --sheet: a second option, down the sheet
      --serve            show FILE, or a test page, as it prints in a page for the
                         browser, whose sliders are the printer's options
      --port N           with --serve: at this port; a free one where not stated
      --open             with --serve: open the page with xdg-open
      --calibration NAME write a page to print that tells what the printer does, a PDF;
                         placement: whether it wants the option DotPlacement;
                         registration: how red and the second pass of 360 dpi lie;
                         position: which offsets put the page in its place;
                         tones: brightness, contrast and middle tones side by side;
                         colours: which colours print red
      --progress         tell how far it is, also where no terminal is

The printer
      --ppd FILE         the printer's PPD: its model and paper
      --any-ppd          go on with a PPD of another maker
      --options TEXT     the job's options, as in 'RedMinValue=90 PageSize=A5'
      --options-file FILE
                         more of them, as --serve saves them; --options goes over them
      --model MODEL      standard, orlo-front or orlo-back; where it is not stated the
                         stream must prove it
      --width MM         width of the paper
      --head-speed MM    millimetres a second across, for the time (300)
      --feed-speed MM    millimetres a second along the paper, for the time (100)

The picture
      --page N[-M]       these pages only, also N- and -M; of a stream its own, which
                         may leave out those without ink; with --from the document's
      --dpi N            dots per inch; the stream's own where not stated
      --scale F          times the stream's own dots per inch
      --pins             draw the round dots of the pins
      --format FORMAT    png (a file a page) or pdf (one file)
  -o, --output FILE      write there, FILE.png or FILE.pdf; - is standard output

  -h, --help             show this
  -V, --version          show the version

Pictures are written to FILE-1.png, FILE-2.png ... in the working folder, a calibration
page to NAME.pdf, over what is there. What was guessed is told, and what of a page will not be on paper as it was
meant. Exit status: 0 fine, 1 trouble with a stream or file, 2 wrong use.
)";
}

}  // namespace velka::view
