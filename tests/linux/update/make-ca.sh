#!/bin/sh
# A certificate authority of the test's own and a certificate it signs for 127.0.0.1, in DIR:
# ca.pem (to trust), server.pem and server.key (to serve with).
set -eu
dir=$1
cd "$dir"
openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout ca.key -out ca.pem -days 2 \
  -subj "/CN=ORLET test authority" 2>/dev/null
openssl req -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -keyout server.key -out server.csr \
  -subj "/CN=127.0.0.1" 2>/dev/null
printf 'subjectAltName=IP:127.0.0.1,DNS:localhost\n' >san.ext
openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -out server.pem \
  -days 2 -extfile san.ext 2>/dev/null
