#!/usr/bin/env bash
# check-queue.sh BUILD-FOLDER CASE: installs the filters below a temporary folder,
# starts a print server of its own there with a queue for each model, prints, and
# reads back what would have gone to the printers. VELKA_KEEP=1 keeps the folder of a
# run that failed, in BUILD-FOLDER.
set -euo pipefail

build=$1
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=tests/queue/server.sh
source "$here/server.sh"
# shellcheck source=tests/queue/documents.sh
source "$here/documents.sh"
# shellcheck source=tests/queue/jobs.sh
source "$here/jobs.sh"
# shellcheck source=tests/queue/page-cases.sh
source "$here/page-cases.sh"
# shellcheck source=tests/queue/option-cases.sh
source "$here/option-cases.sh"
# shellcheck source=tests/queue/locale-cases.sh
source "$here/locale-cases.sh"
# shellcheck source=tests/queue/trouble-cases.sh
source "$here/trouble-cases.sh"
# shellcheck source=tests/queue/guard-cases.sh
source "$here/guard-cases.sh"

start_server
add_queues
make_documents
"check_$2"
stop_server
for queue in "${queues[@]}"; do
  wait_until "nothing runs for $queue" no_process_of "$queue"
done
((failures == 0))
