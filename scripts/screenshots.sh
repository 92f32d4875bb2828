#!/usr/bin/env bash
# Renders the nine windows of the desktop front end, in Czech and English, to
# docs/screenshots/<language>-<window>.png. Offscreen (no display needed),
# through the host tool, the library and the real GUI application, with
# certificates and a PKCS#12 file made here with OpenSSL.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build/demo -G Ninja -DCMAKE_BUILD_TYPE=Release -DORVEL_BUILD_TESTS=OFF >/dev/null
cmake --build build/demo -j "$(nproc)" --target orvel-dialogs
tool=$PWD/build/demo/tools/orvel-dialogs
out=$PWD/docs/screenshots
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# A test authority and three signing certificates: valid for a year, due for
# renewal, and about to expire.
openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -days 3650 -utf8 \
  -subj "/C=CZ/O=Orvel Test/CN=Orvel Test Qualified CA" 2>/dev/null
make_certificate() { # name days subject email
  openssl req -newkey rsa:2048 -nodes -keyout "$1.key" -out "$1.csr" -utf8 -subj "$3" 2>/dev/null
  printf 'subjectAltName=email:%s\nkeyUsage=critical,digitalSignature,nonRepudiation\nextendedKeyUsage=emailProtection\n' "$4" >"$1.ext"
  openssl x509 -req -in "$1.csr" -CA ca.pem -CAkey ca.key -CAcreateserial -days "$2" -extfile "$1.ext" \
    -out "$1.pem" 2>/dev/null
}
make_certificate novak 365 "/C=CZ/O=Město Třebíč/CN=Jiří Novák" jiri.novak@example.cz
make_certificate svobodova 20 "/C=CZ/O=Orvel Test/CN=Eliška Svobodová" eliska.svobodova@example.cz
make_certificate kral 4 "/C=SK/O=Obec Žilina/CN=Ľubomír Kráľ" lubomir.kral@example.sk
openssl pkcs12 -export -inkey novak.key -in novak.pem -passout pass:heslo -out novak.p12 2>/dev/null
printf 'Smlouva o dílo č. 2026/117\n\n' >contract.txt
for i in $(seq 1 12); do printf 'Článek %d: Zhotovitel provede dílo řádně a včas; objednatel zaplatí cenu.\n' "$i"; done >>contract.txt
mkdir -p documents && touch documents/smlouva.pdf documents/faktura.pdf documents/poznámky.txt
# A hostile document: a right-to-left override that turns the IBAN and a file
# name around, a zero-width space, a sentence in tag characters that no font
# draws; and formatted text with a header, white and hidden text.
printf 'Platební příkaz č. 2026/118\n\nIBAN: \u202e9935 4100 0291 0000 0080 56ZC\nPříloha: faktura\u202efdp.exe\nČástka: 12\u200b500 Kč\xf3\xa0\x81\x90\xf3\xa0\x81\xa1\xf3\xa0\x81\xb9\n' >hostile.txt
cat >hostile.rtf <<'RTF'
{\rtf1\ansi\ansicpg1250{\fonttbl{\f0 Arial;}}{\colortbl;\red255\green255\blue255;}{\header Strana 1\par}
Platebn\'ed p\'f8\'edkaz \'e8. 2026/118\par \'c8\'e1stka: 12 500 K\'e8{\cf1  a 90 000 K\'e8 nav\'edc}\par
{\v Souhlas\'edm s p\'f8evodem cel\'e9ho \'fa\'e8tu.}\par}
RTF

export QT_QPA_PLATFORM=offscreen ORVEL_GUI_FRONTEND=desktop
shot() { # file, then the tool's arguments
  local file=$1
  shift
  ORVEL_GUI_SNAPSHOT="$out/$file.png" "$tool" "$@" >/dev/null 2>&1 </dev/null || true
  [ -s "$out/$file.png" ] || { echo "no picture for $file" >&2; return 1; }
}

for lang in cs en; do
  if [ "$lang" = cs ]; then
    export LANG=cs_CZ.UTF-8
    question="Podepsat dokument smlouva.pdf?"
    info="Podpis bude připojen certifikátem Jiří Novák."
  else
    export LANG=en_US.UTF-8
    question="Sign the document contract.pdf?"
    info="The signature will use the certificate of Jiří Novák."
  fi
  shot "$lang-message" --lang "$lang" message --icon warning --message "$question" --info "$info"
  shot "$lang-yesno" --lang "$lang" yesno --message "$question" --info "$info"
  (cd documents && shot "$lang-open" --lang "$lang" open --message "$question" --filter "PDF (pdf)|Text (txt)")
  (cd documents && shot "$lang-save" --lang "$lang" save --message "$question" --filename smlouva-podepsaná.pdf --filter "PDF (pdf)")
  printf 'remove\nwait 3\nclose\n' | ORVEL_GUI_SNAPSHOT="$out/$lang-reinsert.png" \
    "$tool" --lang "$lang" reinsert --message "$info" >/dev/null 2>&1 || true
  shot "$lang-display-cert" --lang "$lang" show-cert novak.pem
  shot "$lang-select-cert" --lang "$lang" select-cert --selected 0 novak.pem svobodova.pem kral.pem
  shot "$lang-confirm-signature" --lang "$lang" confirm-signature --data "$(cat contract.txt)" \
    --sign-version "Orvel Sign 5.2" novak.pem svobodova.pem kral.pem
  shot "$lang-pkcs12" --lang "$lang" pkcs12 --filename "$work/novak.p12"
  shot "$lang-confirm-signature-hostile" --lang "$lang" confirm-signature --data "$(cat hostile.txt)" \
    --rtf "$(cat hostile.rtf)" --sign-version "Orvel Sign 5.2" novak.pem svobodova.pem kral.pem
done
ls "$out"
