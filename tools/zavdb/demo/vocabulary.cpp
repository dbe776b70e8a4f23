#include "tools/zavdb/demo/vocabulary.h"

namespace tools::demo {

namespace {

constexpr VatClassWords kVatClasses[] = {
    {kVat24, u"Yleinen verokanta 24 %", 24.0F, u"3000", u"ALV 24 %", u"S"},
    {kVat14, u"Ruoka ja ravintolat 14 %", 14.0F, u"3010", u"ALV 14 %", u"S"},
    {kVat10, u"Kirjat, lehdet, lääkkeet 10 %", 10.0F, u"3020", u"ALV 10 %", u"S"},
    {kVat0, u"Veroton", 0.0F, u"3030", u"ALV 0 %", u"Z"},
    {kVat255, u"Yleinen verokanta 25,5 %", 25.5F, u"3005", u"ALV 25,5 %", u"S"},
};

constexpr MainGroupWords kMainGroups[] = {
    {1, u"Elintarvikkeet", u"3010"},
    {2, u"Juomat", u"3011"},
    {3, u"Kirjat ja lehdet", u"3020"},
    {4, u"Koti ja keittiö", u"3000"},
    {5, u"Rakentaminen ja työkalut", u"3001"},
    {6, u"Piha ja puutarha", u"3002"},
    {7, u"Vaatteet ja jalkineet", u"3003"},
    {8, u"Urheilu ja vapaa-aika", u"3004"},
    {9, u"Kodin elektroniikka", u"3006"},
    {10, u"Lemmikit", u"3007"},
    {11, u"Palvelut", u"3040"},
    {12, u"Lahjakortit ja maksut", u"3030"},
};

constexpr GroupWords kGroups[] = {
    {1, u"Leipä ja leivonnaiset", kVat14, 129, 690, u"pkt", u"Ruisleivät|Vaaleat leivät|Pullat",
     u"Ruisleipä|Kauraleipä|Näkkileipä|Hapankorppu|Pulla|Karjalanpiirakka|Rieska",
     u"viipaloitu|täysjyvä|perinteinen|pehmeä|luomu|gluteeniton", u"250 g|400 g|500 g|6 kpl|9 kpl"},
    {1, u"Maitotuotteet", kVat14, 79, 890, u"pkt", u"Maidot|Juustot|Jogurtit",
     u"Rasvaton maito|Kevytmaito|Piimä|Juusto|Rahka|Jogurtti|Voi|Kerma",
     u"laktoositon|luomu|täyteläinen|mansikka|mustikka|maustamaton", u"2 dl|5 dl|1 l|200 g|500 g"},
    {1, u"Liha ja kala", kVat14, 299, 3990, u"kg", u"Liha|Kala|Makkarat",
     u"Kirjolohi|Siika|Poronkäristys|Naudan paisti|Porsaan kylki|Lenkkimakkara|Lihapulla",
     u"savustettu|graavattu|tuore|kylmäsavu|maustettu", u"300 g|400 g|700 g|kg"},
    {1, u"Pakasteet", kVat14, 149, 1290, u"pkt", u"Kasvikset|Ateriat|Jäätelöt",
     u"Herne|Vihannessekoitus|Mustikka|Puolukka|Kalapuikko|Pizza|Jäätelö",
     u"kotimainen|luomu|vanilja|lakka|perhepakkaus", u"200 g|500 g|1 kg|1,5 l"},
    {1, u"Säilykkeet ja mausteet", kVat14, 99, 1190, u"kpl", u"Säilykkeet|Mausteet|Kastikkeet",
     u"Hernekeitto|Tonnikala|Puolukkahillo|Sinappi|Ketsuppi|Merisuola|Mustapippuri",
     u"perinteinen|mieto|väkevä|karkea|hieno", u"50 g|200 g|400 g|500 g"},
    {1, u"Kahvi, tee ja makeiset", kVat14, 199, 1590, u"pkt", u"Kahvit|Teet|Makeiset",
     u"Suodatinkahvi|Espressopapu|Vihreä tee|Lakritsi|Salmiakki|Suklaalevy|Keksi",
     u"tumma|vaalea|luomu|minttu|lakritsi|pähkinä", u"90 g|200 g|250 g|450 g|500 g"},
    {2, u"Virvoitusjuomat ja vedet", kVat14, 89, 490, u"plo", u"Limonadit|Vedet|Mehut",
     u"Limonadi|Kivennäisvesi|Omenamehu|Mustaherukkamehu|Kotikalja|Energiajuoma",
     u"sokeriton|sitruuna|vadelma|perinteinen|hiilihapotettu", u"0,33 l|0,5 l|1 l|1,5 l"},
    {2, u"Oluet ja siiderit", kVat24, 149, 690, u"plo", u"Oluet|Siiderit|Alkoholittomat",
     u"Lager|Tumma olut|Vehnäolut|Omenasiideri|Päärynäsiideri|Long drink",
     u"mieto|kuiva|vahva|suodattamaton", u"0,33 l|0,5 l|6 x 0,33 l"},
    {3, u"Kirjat", kVat10, 890, 4590, u"kpl", u"Kaunokirjat|Tietokirjat|Lastenkirjat",
     u"Romaani|Dekkari|Keittokirja|Lintukirja|Satukirja|Tietosanakirja|Runokokoelma",
     u"sidottu|nidottu|pokkari|kuvitettu", u"osa 1|osa 2|osa 3|juhlapainos"},
    {3, u"Lehdet ja kartat", kVat10, 290, 2490, u"kpl", u"Aikakauslehdet|Kartat",
     u"Aikakauslehti|Ristikkolehti|Puutarhalehti|Retkeilykartta|Seinäkalenteri",
     u"suomi|ruotsi|irtonumero", u"2023|2024|A4|A3"},
    {4, u"Astiat", kVat24, 390, 8990, u"kpl", u"Lautaset|Mukit|Lasit",
     u"Lautanen|Muki|Juomalasi|Kulho|Kahvikuppi|Tarjoiluvati",
     u"valkoinen|sininen|kirkas|kuviollinen|savenvärinen", u"20 cm|26 cm|3 dl|4 dl|6 kpl"},
    {4, u"Keittiövälineet", kVat24, 490, 15990, u"kpl", u"Kattilat|Veitset|Leivonta",
     u"Paistinpannu|Kattila|Keittiöveitsi|Kuorimaveitsi|Vatkain|Leikkuulauta|Kakkuvuoka",
     u"teräs|valurauta|puu|silikoni|koivu", u"1,5 l|3 l|20 cm|28 cm"},
    {4, u"Kodin tekstiilit", kVat24, 690, 12990, u"kpl", u"Pyyhkeet|Vuodevaatteet|Matot",
     u"Pyyhe|Laudeliina|Pussilakanasetti|Tyyny|Räsymatto|Torkkupeitto|Verho",
     u"pellava|puuvilla|valkoinen|harmaa|vihreä|raidallinen", u"50x70|70x140|150x210|80x200"},
    {4, u"Siivous ja pesu", kVat24, 199, 2990, u"kpl", u"Pesuaineet|Siivousvälineet",
     u"Pyykinpesuaine|Astianpesuaine|Mäntysuopa|Yleispuhdistusaine|Harja|Moppi|Roskapussi",
     u"hajusteeton|sitruuna|tehokas|tiiviste", u"500 ml|1 l|2 l|10 kpl"},
    {5, u"Käsityökalut", kVat24, 490, 12990, u"kpl", u"Vasarat|Sahat|Mittaus",
     u"Vasara|Käsisaha|Ruuvimeisseli|Jakoavain|Rullamitta|Vatupassi|Kirves",
     u"ammattilaisen|kumikahva|puuvarsi|taottu", u"0,5 kg|22\"|5 m|600 mm"},
    {5, u"Sähkötyökalut", kVat24, 3990, 69900, u"kpl", u"Porakoneet|Sahat|Hiomakoneet",
     u"Akkuporakone|Pistosaha|Pyörösaha|Kulmahiomakone|Tasohiomakone|Iskuporakone",
     u"hiiliharjaton|kompakti|tehokas", u"12 V|18 V|36 V|1200 W"},
    {5, u"Kiinnikkeet", kVat24, 99, 4990, u"pkt", u"Ruuvit|Naulat|Ankkurit",
     u"Yleisruuvi|Terassiruuvi|Lankanaula|Huopanaula|Kiila-ankkuri|Aluslevy|Mutteri",
     u"sinkitty|ruostumaton|kuumasinkitty|musta", u"4x40|5x60|M8|M10|100 kpl"},
    {5, u"Maalit", kVat24, 990, 14990, u"prk", u"Sisämaalit|Ulkomaalit|Lakat",
     u"Seinämaali|Kattomaali|Ulkomaali|Punamulta|Lattialakka|Puuöljy|Pohjamaali",
     u"valkoinen|himmeä|kiiltävä|sävytettävä", u"0,9 l|2,7 l|9 l"},
    {5, u"Sauna", kVat24, 590, 99900, u"kpl", u"Kiukaat|Kiulut ja kauhat|Saunan tarvikkeet",
     u"Kiuas|Löylykauha|Kiulu|Löylymittari|Saunatuoksu|Kiuaskivi|Vihta",
     u"haapa|tervaleppä|kupari|ruostumaton", u"4 l|6 kW|9 kW|20 kg"},
    {6, u"Siemenet ja taimet", kVat24, 199, 3990, u"kpl", u"Siemenet|Taimet|Kukkasipulit",
     u"Porkkanan siemen|Tillin siemen|Omenapuu|Mustaherukka|Ruusu|Tulppaani|Pelargoni",
     u"kotimainen|talvenkestävä|keltainen|punainen", u"pussi|2 l ruukku|10 kpl"},
    {6, u"Puutarhatyökalut", kVat24, 690, 89900, u"kpl", u"Lapiot|Leikkurit|Kastelu",
     u"Lapio|Lehtiharava|Oksasakset|Ruohonleikkuri|Puutarhaletku|Kottikärryt|Lumikola",
     u"kestävä|kevyt|teräs|ergonominen", u"20 m|50 m|85 l|40 cm"},
    {6, u"Grillaus", kVat24, 390, 79900, u"kpl", u"Grillit|Hiilet|Tarvikkeet",
     u"Kaasugrilli|Hiiligrilli|Savustuslaatikko|Grillihiili|Grillipihdit|Muurinpohjapannu",
     u"matkamalli|valurauta|ruostumaton", u"3 kg|48 cm|3 poltinta"},
    {7, u"Naisten vaatteet", kVat24, 1290, 24900, u"kpl", u"Paidat|Housut|Takit",
     u"Neulepaita|T-paita|Farkut|Mekko|Sadetakki|Villahuivi|Leggingsit",
     u"musta|valkoinen|sininen|beige|punainen", u"XS|S|M|L|XL"},
    {7, u"Miesten vaatteet", kVat24, 1290, 24900, u"kpl", u"Paidat|Housut|Takit",
     u"Kauluspaita|T-paita|Työhousut|Farkut|Huppari|Talvitakki|Villasukat",
     u"musta|harmaa|sininen|vihreä", u"S|M|L|XL|XXL"},
    {7, u"Jalkineet", kVat24, 1990, 22900, u"par", u"Kengät|Saappaat|Tossut",
     u"Kumisaappaat|Vaelluskengät|Lenkkarit|Huopatossut|Turvakengät|Sandaalit",
     u"musta|ruskea|vedenpitävä", u"37|39|41|43|45"},
    {8, u"Retkeily", kVat24, 590, 49900, u"kpl", u"Teltat|Reput|Ruoanlaitto",
     u"Teltta|Rinkka|Makuupussi|Retkikeitin|Kuksa|Termospullo|Otsalamppu",
     u"kevyt|3 vuodenajan|2 hengen|visakoivu", u"30 l|65 l|0,5 l|1 l"},
    {8, u"Hiihto ja luistelu", kVat24, 490, 59900, u"par", u"Sukset|Sauvat|Luistimet",
     u"Hiihtosukset|Hiihtosauvat|Luistimet|Suksivoide|Monot|Laskettelulasit",
     u"pito|luisto|perinteinen|vapaa", u"160 cm|195 cm|koko 42|koko 44"},
    {8, u"Kalastus", kVat24, 290, 34900, u"kpl", u"Vavat|Vieheet|Verkot",
     u"Virveli|Pilkkivapa|Vaappu|Lusikkauistin|Katiska|Siima|Onkisetti", u"ahven|hauki|kuha|taimen",
     u"7 g|15 g|0,25 mm|2,1 m"},
    {9, u"Kaapelit ja tarvikkeet", kVat24, 390, 7990, u"kpl", u"Kaapelit|Sovittimet|Jatkojohdot",
     u"Verkkokaapeli|Jatkojohto|Latauskaapeli|Pistorasia|Ajastin|Kaapelikanava",
     u"valkoinen|musta|maadoitettu|ulkokäyttöön", u"1 m|2 m|5 m|10 m"},
    {9, u"Kodinkoneet", kVat24, 1990, 129900, u"kpl", u"Pienkoneet|Kylmälaitteet|Pesukoneet",
     u"Kahvinkeitin|Vedenkeitin|Leivänpaahdin|Pölynimuri|Jääkaappi|Pyykinpesukone",
     u"valkoinen|teräs|hiljainen|energiatehokas", u"1 l|7 kg|60 cm|1800 W"},
    {9, u"Valaisimet ja paristot", kVat24, 290, 19900, u"kpl", u"Valaisimet|Lamput|Paristot",
     u"Pöytävalaisin|Kattovalaisin|Led-lamppu|Alkaliparisto|Akku|Taskulamppu",
     u"lämmin|päivänvalo|himmennettävä|valkoinen", u"4 W|9 W|AA 4 kpl|AAA 4 kpl"},
    {10, u"Lemmikkien ruoka", kVat14, 149, 6990, u"pss", u"Koirat|Kissat|Muut",
     u"Koiran kuivamuona|Kissan märkäruoka|Koiran puruluu|Kissan kuivamuona|Linnunsiemen",
     u"kana|lohi|poro|viljaton", u"100 g|400 g|2 kg|12 kg"},
    {10, u"Lemmikkitarvikkeet", kVat24, 390, 14990, u"kpl", u"Hihnat|Lelut|Häkit",
     u"Talutushihna|Kaulapanta|Heijastinliivi|Raapimispuu|Ruokakuppi|Lelu",
     u"musta|heijastava|pieni|suuri", u"S|M|L|1,5 m"},
    {11, u"Asennus ja huolto", kVat24, 1990, 39900, u"h", u"Asennus|Huolto",
     u"Asennustyö|Huoltotyö|Suksien huolto|Pyörän huolto|Teroitus|Sävytys", u"perus|laaja|pika",
     u"tunti|kerta|pari"},
    {11, u"Kuljetus ja vuokraus", kVat24, 490, 14900, u"kpl", u"Kuljetus|Vuokraus",
     u"Kotiinkuljetus|Nouto|Peräkärryn vuokra|Konevuokra|Postikulu",
     u"lähialue|koko maa|vuorokausi", u"1 pv|3 pv|1 kerta"},
    {12, u"Lahjakortit", kVat0, 1000, 20000, u"kpl", u"Lahjakortit|Kurssit",
     u"Lahjakortti|Kurssimaksu|Osallistumismaksu", u"paperinen|sähköinen", u"20 €|50 €|100 €"},
};

constexpr CustomerGroupWords kCustomerGroups[] = {
    {1, u"Kuluttajat", 1, 0.0, false},      {2, u"Kanta-asiakkaat", 2, 2.0, false},
    {3, u"Yritykset", 3, 5.0, true},        {4, u"Ravintolat ja kahvilat", 6, 7.5, true},
    {5, u"Kunnat ja koulut", 4, 5.0, true}, {6, u"Rakennusliikkeet", 5, 10.0, true},
    {7, u"Jälleenmyyjät", 7, 12.5, true},   {8, u"Henkilökunta", 9, 0.0, false},
};

constexpr QStringView kSuppliers[] = {
    u"Pohjolan Tukku Oy",      u"Järvi-Suomen Leipä Oy",  u"Saimaan Kala Ky",
    u"Lakeuden Maito Oy",      u"Kaskenpolttajat Oy",     u"Rannikon Rauta Oy",
    u"Hämeen Puutarha Oy",     u"Tunturin Vaate Oy",      u"Savon Työkalu Oy",
    u"Länsirannan Paperi Oy",  u"Karjalan Panimo Ky",     u"Itärajan Hunaja",
    u"Sähkötarvike Ämmälä Oy", u"Kirjavälitys Öhman",     u"Åbo Handel Ab",
    u"Nordens Hem Ab",         u"Kuusamon Viehe",         u"Lapin Retkivaruste Oy",
    u"Keskusvaraston Osto",    u"Uudenmaan Kodinkone Oy",
};

constexpr QStringView kBrands[] = {
    u"Kuura", u"Pihlaja", u"Routa", u"Kajo",    u"Ruska",    u"Tervas",
    u"Utu",   u"Kelo",    u"Tuohi", u"Harju",   u"Saaristo", u"Halla",
    u"Kaiku", u"Räntä",   u"Äyräs", u"Yölintu", u"Åland",    u"Suvituuli",
};

constexpr QStringView kFirstNames[] = {
    u"Aino",   u"Väinö", u"Eeva",   u"Matti", u"Päivi",   u"Jukka", u"Tuula", u"Pekka",
    u"Hilkka", u"Åke",   u"Sirkka", u"Yrjö",  u"Anneli",  u"Kalle", u"Mirja", u"Heikki",
    u"Leena",  u"Olavi", u"Sari",   u"Timo",  u"Kaarina", u"Mikko", u"Elina", u"Juhani",
};

constexpr QStringView kLastNames[] = {
    u"Virtanen",   u"Korhonen",  u"Mäkinen",  u"Nieminen", u"Mäkelä",   u"Hämäläinen",
    u"Laine",      u"Heikkinen", u"Koskinen", u"Järvinen", u"Lehtonen", u"Saarinen",
    u"Niemi",      u"Salonen",   u"Åberg",    u"Öhman",    u"Hyvönen",  u"Räsänen",
    u"Kärkkäinen", u"Lindström", u"Pöyhönen", u"Törmälä",  u"Kettunen", u"Ahola",
};

constexpr QStringView kTrades[] = {
    u"Rakennus",         u"Ravintola", u"Kahvila", u"Sähkö",    u"Maalaamo", u"Leipomo",
    u"Kiinteistöhuolto", u"Puutarha",  u"Metalli", u"Kuljetus", u"Hotelli",  u"Koneurakointi",
};

constexpr QStringView kStreets[] = {
    u"Kauppakatu", u"Rantatie",   u"Koulukatu",  u"Mäkitie", u"Tehtaankatu", u"Kirkkokatu",
    u"Satamakatu", u"Pähkinätie", u"Länsiväylä", u"Öljytie", u"Ahventie",    u"Koivukuja",
};

constexpr QStringView kTowns[] = {
    u"00100 Helsinki",  u"33100 Tampere",       u"20100 Turku",        u"90100 Oulu",
    u"40100 Jyväskylä", u"70100 Kuopio",        u"15110 Lahti",        u"60100 Seinäjoki",
    u"65100 Vaasa",     u"96100 Rovaniemi",     u"53100 Lappeenranta", u"13100 Hämeenlinna",
    u"94100 Kemi",      u"22100 Maarianhamina",
};

constexpr QStringView kPriceLevels[] = {
    u"Vähittäishinta", u"Kanta-asiakas", u"Tukku 1",      u"Tukku 2",      u"Tukku 3",
    u"Ravintolat",     u"Jälleenmyyjä",  u"Verkkokauppa", u"Henkilökunta",
};

}  // namespace

std::span<const VatClassWords> vatClasses() {
    return kVatClasses;
}
std::span<const MainGroupWords> mainGroups() {
    return kMainGroups;
}
std::span<const GroupWords> groups() {
    return kGroups;
}
std::span<const CustomerGroupWords> customerGroups() {
    return kCustomerGroups;
}
std::span<const QStringView> suppliers() {
    return kSuppliers;
}
std::span<const QStringView> brands() {
    return kBrands;
}
std::span<const QStringView> firstNames() {
    return kFirstNames;
}
std::span<const QStringView> lastNames() {
    return kLastNames;
}
std::span<const QStringView> trades() {
    return kTrades;
}
std::span<const QStringView> streets() {
    return kStreets;
}
std::span<const QStringView> towns() {
    return kTowns;
}
std::span<const QStringView> priceLevelNames() {
    return kPriceLevels;
}

}  // namespace tools::demo
